#pragma once

#include <vector>

#include "beautykernel/facefleckcleaner/donorDirection.h"
#include "beautykernel/facefleckcleaner/fleckTypes.h"

namespace zellab {

/// Lays the fine detail of each fleck's donor block over its repair: the repair's blurred colour plus what
/// the donor differs from its own blur. The rim above and to the left of a fleck is treated like it.
/// @param crop    RGBA at full resolution, changed in place; byte 3 stays
/// @param labels  of the crop's size: fleck i of the list has i + 1; pixels that were treated become -255
/// @return the repaired boxes with their margins, in pixels of the crop
std::vector<FleckRecord> TransplantTexture(ImageView crop, PlaneView<int> labels,
                                           const std::vector<FleckRect>& flecks,
                                           const std::vector<DonorDirection>& directions);

}  // namespace zellab
