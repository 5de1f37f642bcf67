#pragma once

#include <vector>

#include "beautykernel/facefleckcleaner/fleckTypes.h"

namespace zellab {

/// A step to one of the eight neighbouring blocks, in blocks; both 0 where none fits.
struct DonorDirection {
    int x = 0, y = 0;
};

/// Chooses for each fleck the neighbouring block of its size that has the least texture, where four or more
/// fit in the crop; with fewer, the first that fits, in the order up, left, right, down, up-left, down-left,
/// up-right, down-right. Texture is what the red of a pixel differs from its 7 by 7 mean.
std::vector<DonorDirection> ChooseDonorDirections(ConstImageView crop, const std::vector<FleckRect>& flecks);

}  // namespace zellab
