#pragma once

#include <vector>

#include "portrait/image.h"

namespace zel {

/// Makes a picture livelier where it lies off the plane in focus: its colours become stronger and its lights
/// brighter. The subject stays to the byte, and so does alpha.
/// @param nearness  a byte a pixel, of the picture's size, larger is nearer; empty: all of the picture counts as
///                  off the plane
/// @param inFocus   nearness of the plane in focus
/// @param amount    0 changes nothing, 1 is the strongest
void enliven(Image& image, const std::vector<unsigned char>& nearness, int inFocus, float amount);

/// The nearness in focus: the middle one of those around a point, which is given in pixels.
int nearnessAround(const std::vector<unsigned char>& nearness, int width, int height, int x, int y);

}  // namespace zel
