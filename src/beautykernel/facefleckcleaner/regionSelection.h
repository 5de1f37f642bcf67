#pragma once

#include "beautykernel/facefleckcleaner/fleckTypes.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Labels the connected regions of a mask from 1 on. @return their boxes; region i has label i + 1
std::vector<FleckRect> labelRegions(PlaneView<const Byte> mask, Plane<int>& labels);

/// The regions of a mask that pass, numbered anew. `makeTest(labels, count)` is called once where there are
/// any and gives the test, which is called with the label and box of each.
template <typename MakeTest>
FoundFlecks selectRegions(PlaneView<const Byte> mask, const MakeTest& makeTest) {
    FoundFlecks found;
    const std::vector<FleckRect> boxes = labelRegions(mask, found.labels);
    if (boxes.empty()) return found;
    const auto passes = makeTest(PlaneView<const int>(found.labels.view()), boxes.size());
    std::vector<int> newLabel(boxes.size() + 1);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (!passes(i + 1, boxes[i])) continue;
        found.boxes.push_back(boxes[i]);
        newLabel[i + 1] = static_cast<int>(found.boxes.size());
    }
    for (int *l = found.labels.data(), *end = l + found.labels.size(); l < end; ++l)
        *l = newLabel[static_cast<std::size_t>(*l)];
    return found;
}

}  // namespace zellab
