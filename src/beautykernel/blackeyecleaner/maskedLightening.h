#pragma once

namespace zellab {

/// Lightens what a host marked as a dark circle: the picture is smoothed in two passes, and pixels darker
/// than the smooth one move to it by the softened mask. Nothing happens for a null pointer or a mask without
/// marks.
/// @param mask  plane of the picture's size, non-zero on the circle; not changed
void lightenUnderMask(unsigned char* image, int width, int height, const unsigned char* mask);

/// The same for a rectangle in pixels, as far as it lies in the picture: by a triangular filter whose radius
/// is a quarter of the shorter side, fading out towards the rectangle's border.
void lightenRectangle(unsigned char* image, int width, int height, int x, int y, int rectWidth,
                      int rectHeight);

}  // namespace zellab
