#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Largest radius that the spot textures know.
inline constexpr int kLargestSpotRadius = 2;

/// Repaints red, green and blue of the square of side 2 * radius + 1 around (x, y): each cell solves
/// 4 u - the sum of its neighbours = its texture value, the ring around the square held fixed.
/// The square and its ring must lie inside the picture.
void repaintSpot(ImageView image, int x, int y, int radius);

}  // namespace zellab
