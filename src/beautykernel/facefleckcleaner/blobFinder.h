#pragma once

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Radii in pixels of the two blurs whose difference is a blob.
struct BlobRadii {
    int small = 0, large = 0;
};

/// Dark blobs of a plane: 255 where its stretched copy, blurred by the small radius, lies more than 4 below
/// the same blurred on by the large one; widened by a pixel.
Plane<Byte> DarkBlobs(PlaneView<const Byte> plane, BlobRadii radii);

/// Dark blobs at full size, and those of a copy with a shorter side of 320 that look like spots.
/// @param skinMask    of the plane's size
/// @param protect     of the plane's size: nothing is found where it is not 0
/// @param sizeFactor  least size of a blob as a share of the shorter side
Plane<Byte> findBlobs(PlaneView<const Byte> plane, PlaneView<const Byte> skinMask,
                      PlaneView<const Byte> protect, BlobRadii radii, float sizeFactor);

}  // namespace zellab
