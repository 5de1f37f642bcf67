#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Removes haze from an RGBA picture in place: each colour channel is stretched so that half a percent of its
/// pixels ends at either end. A channel of one value becomes 127. Nothing happens for an empty picture.
void defog(ImageView image);

}  // namespace zellab
