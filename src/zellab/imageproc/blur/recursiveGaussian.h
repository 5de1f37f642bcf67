#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Blurs in place by a recursive Gaussian whose cost does not depend on sigma.
///
/// Of RGBA pixels bytes 0 to 2 are blurred. An axis with a sigma below 0.1 (or NaN), or of one pixel, is left
/// alone; sigma is limited to 250. Returns whether the view is valid.
bool RecursiveGaussianBlur(ImageView image, float sigmaX, float sigmaY);
bool RecursiveGaussianBlur(PlaneView<Byte> plane, float sigmaX, float sigmaY);

}  // namespace zellab
