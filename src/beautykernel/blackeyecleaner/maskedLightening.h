#pragma once

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zellab {

/// Lightens what a host marked as a dark circle: the picture is smoothed in two passes, and pixels darker
/// than the smooth one move to it by the softened mask. Nothing happens for an empty picture or a mask
/// without marks.
/// @param mask  plane of the picture's size, non-zero on the circle; not changed
void lightenUnderMask(ImageView image, PlaneView<const Byte> mask);

/// The same for a rectangle in pixels, as far as it lies in the picture: by a triangular filter whose radius
/// is a quarter of the shorter side, fading out towards the rectangle's border.
void lightenRectangle(ImageView image, const PixelBox& rectangle);

}  // namespace zellab
