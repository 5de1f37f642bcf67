#pragma once

#include <vector>

#include "beautykernel/facefleckcleaner/fleckTypes.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Limits of a spot's shape by the size of the crop it lies in.
struct SpotLimits {
    int smallestArea, largestArea, longestSide;  // pixels
};
SpotLimits fleckLimits(int width, int height);

/// Skin from this value on; a spot has to lie on it for the most part.
inline constexpr Byte kSpotSkin = 160;

/// Whether a box is at most fillLimit / 256 times its spot's area (exclusive) and at most longLimit / 256
/// times as long as wide.
bool isCompact(int boxWidth, int boxHeight, int area, int fillLimit, int longLimit);

/// Marks what is darker and redder than the skin around it: 255 on spots, 0 elsewhere.
Plane<Byte> darkSpots(ConstImageView crop, PlaneView<const Byte> skinMask);

/// The spots of a plane (128 and above) that have a fleck's size and shape, numbered by their first pixel.
FoundFlecks shapedLikeFlecks(PlaneView<const Byte> spots);

/// Keeps the flecks that lie on skin for the most part, cuts down those that lie there by more than a third,
/// drops the rest, and numbers what stays anew.
void keepOnSkin(FoundFlecks& flecks, PlaneView<const Byte> skinMask);

}  // namespace zellab
