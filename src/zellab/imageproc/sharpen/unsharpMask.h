#pragma once

namespace zellab {

/// Sharpens in place against a stack blur of the picture.
/// @param rowBytes   4 * width for RGBA (bytes 0 to 2 change), width for a plane
/// @param amount     percent of the difference that is added; at most 500, below 2 counts as 1
/// @param radius     limited to 0.1..1000; the blur's radius is 2.25 times as much, truncated
/// @param threshold  the added difference shrinks by this many levels, and smaller ones add nothing
/// @return false for a null picture or a side below 1, true otherwise
bool UnsharpMask(unsigned char* pixels, int width, int height, int rowBytes, int amount, float radius,
                 unsigned char threshold, int reserved);

}  // namespace zellab
