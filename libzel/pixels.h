#pragma once

#include "libzel/failure.h"
#include "portrait/image.h"

/// The caller's pixels and the library's own pictures.

namespace zel {

/// Throws a Failure that names what is wrong where the pixels cannot be worked on. `what` names them.
void checkColour(const zel_pixels* pixels, const char* what);  // four channels
void checkGrey(const zel_pixels* pixels, const char* what);    // one byte
/// checkGrey, and of width by height.
void checkPlane(const zel_pixels* pixels, int width, int height, const char* what);

/// A copy as straight RGBA. For pixels that were checked.
Image imageOf(const zel_pixels& pixels);
Mask maskOf(const zel_pixels& pixels);

/// Writes a picture of the same size back in the caller's order and alpha.
void writeBack(const Image& image, const zel_pixels& pixels);
void writeBack(const Mask& mask, const zel_pixels& pixels);

/// Pixels over an own picture, straight RGBA or grey.
zel_pixels pixelsOver(Image& image);
zel_pixels pixelsOver(Mask& mask);

}  // namespace zel
