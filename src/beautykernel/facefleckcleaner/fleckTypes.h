#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Box of a fleck, both ends inclusive, in pixels of the crop at hand.
struct FleckRect {
    int top = 0, bottom = 0, left = 0, right = 0;
    int width() const { return right - left + 1; }
    int height() const { return bottom - top + 1; }
};

/// A repaired box in the picture; `area` is width times height.
struct FleckRecord {
    int left = 0, top = 0, width = 0, height = 0, area = 0;
};

/// What a search found. Labels: fleck i of the list has label i + 1, all else 0.
struct FoundFlecks {
    std::vector<FleckRect> boxes;
    Plane<int> labels;
};

}  // namespace zellab
