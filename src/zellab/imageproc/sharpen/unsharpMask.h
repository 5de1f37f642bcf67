#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Sharpens in place against a stack blur of the picture.
/// Of RGBA pixels bytes 0 to 2 change.
/// @param amount     percent of the difference that is added; at most 500, below 2 counts as 1
/// @param radius     limited to 0.1..1000; the blur's radius is 2.25 times as much, truncated
/// @param threshold  the added difference shrinks by this many levels, and smaller ones add nothing
/// @return whether the view is valid
bool UnsharpMask(ImageView image, int amount, float radius, Byte threshold);
bool UnsharpMask(PlaneView<Byte> plane, int amount, float radius, Byte threshold);

}  // namespace zellab
