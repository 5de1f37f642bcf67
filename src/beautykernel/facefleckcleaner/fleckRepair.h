#pragma once

#include <vector>

#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/fleckTypes.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// What a repair did to a face.
struct FleckRepair {
    std::vector<FleckRecord> records;  // in pixels of the picture, by rising area
    Plane<int> labels;                 // of the face's box: 0 where there is neither skin nor fleck
};

/// Repairs the flecks that were found on a face: fills them at the working size, pastes the fill into the
/// picture and lays the texture of the skin beside it over it at full resolution.
/// @param crop   changed: its pixels hold the fill
/// @param found  boxes and labels at the working size
FleckRepair repairFlecks(ImageView image, FaceCrop& crop, FoundFlecks found);

}  // namespace zellab
