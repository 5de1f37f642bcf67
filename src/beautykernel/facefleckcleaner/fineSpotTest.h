#pragma once

#include "beautykernel/facefleckcleaner/fleckTypes.h"

namespace zellab {

/// What a spot of the fine search has to be.
struct FineSpotLimits {
    int fillLimit;     // its box is below this many 256ths of its area
    int longLimit;     // its longer side is at most this many 256ths of the shorter one
    float sizeFactor;  // least size as a share of the crop's shorter side
};

/// The spots of a plane (128 and above) that pass, numbered by their first pixel: of a fitting size and
/// shape, with at most a third of their pixels off the skin (below 160) and none where the mask is 1.
FoundFlecks passingSpots(PlaneView<const Byte> spots, PlaneView<const Byte> skinMask,
                         const FineSpotLimits& limits);

}  // namespace zellab
