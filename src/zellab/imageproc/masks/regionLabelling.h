#pragma once

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
/// Regions are numbered in the order of their first pixel, row by row. `labels` (width * height) receives 0
/// on background and 1 for the first region, 2 for the next; `*boxes` a new array of one box a region, which
/// the caller releases with free(). Returns the number of regions. Where there is none, or on a null pointer
/// or a size of 0 or less, returns -1, `labels` untouched and `*boxes` null.
int LabelConnectedRuns(const unsigned char* plane, int* labels, int width, int height, RegionBox** boxes);

}  // namespace zellab
