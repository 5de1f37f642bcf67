#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Smoothing that keeps detail: a soft-light mask of green and blurred green, its contrast raised, mixes
/// each colour byte with its value on NatureTable: where the mask is dark the tone curve holds, where it is
/// bright the picture stays. RGBA pixels, in place; alpha stays.
///
/// @param radius  of the stack blur, limited as in CStackBlur::StackBlurEx
///
/// An empty picture changes nothing.
void natureSmooth(ImageView image, int radius);

}  // namespace zellab
