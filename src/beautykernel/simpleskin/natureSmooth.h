#pragma once

namespace zellab {

/// Smoothing that keeps detail: a soft-light mask of green and blurred green, its contrast raised, mixes
/// each colour byte with its value on NatureTable: where the mask is dark the tone curve holds, where it is
/// bright the picture stays. RGBA pixels, in place; alpha stays.
///
/// @param radius  of the stack blur, limited as in CStackBlur::StackBlurEx
///
/// A null picture or a size below 1 changes nothing.
void natureSmooth(unsigned char* rgba, int width, int height, int radius);

}  // namespace zellab
