#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Bounds of a region, both ends inclusive. A fresh box is empty: any pixel widens it.
struct RegionBox {
    int top = 1000000;
    int bottom = -1;
    int left = 1000000;
    int right = -1;
};

/// Finds the connected regions (8-neighbourhood) of the bytes of 128 or more.
///
/// Regions are numbered in the order of their first pixel, row by row. `labels`, of the plane's size,
/// receives 0 on background and 1 for the first region, 2 for the next. Returns one box a region; none where
/// there is no region or a view is not valid, and then `labels` stays.
std::vector<RegionBox> LabelConnectedRuns(PlaneView<const Byte> plane, PlaneView<int> labels);

}  // namespace zellab
