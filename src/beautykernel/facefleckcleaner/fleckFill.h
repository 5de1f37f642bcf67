#pragma once

#include <vector>

#include "beautykernel/facefleckcleaner/fleckTypes.h"

namespace zellab {

/// Fills flecks from the skin around them: each pixel becomes the mean of the skin reached on the four ways
/// along its row and column, the nearer edge counting for more.
/// @param crop    RGBA, changed in place; byte 3 stays
/// @param labels  of the crop's size: fleck i of the list has i + 1, skin is negative, all else 0
/// A pixel that no skin reaches, or only from so far that it counts for nothing, keeps its colour.
void FillFlecks(ImageView crop, PlaneView<const int> labels, const std::vector<FleckRect>& flecks);

}  // namespace zellab
