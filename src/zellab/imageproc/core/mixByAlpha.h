#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// result = before + (after - before) * alpha, truncated, for bytes 0 to 2 of RGBA pictures of one size;
/// byte 3 of `result` stays. `result` may be the same picture as `before` or `after`.
/// @param alpha  limited to 0..1; NaN counts as 0
/// Nothing happens where a view is not valid.
void MixByAlpha(ImageView result, ConstImageView before, ConstImageView after, float alpha);

}  // namespace zellab
