#include "beautykernel/facefleckcleaner/regionSelection.h"

#include <cstdlib>
#include <memory>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace zellab {

std::vector<FleckRect> labelRegions(PlaneView<const Byte> mask, Plane<int>& labels) {
    labels = Plane<int>(mask.width, mask.height);
    RegionBox* boxes = nullptr;
    const int count = LabelConnectedRuns(mask.data, labels.data(), mask.width, mask.height, &boxes);
    const std::unique_ptr<RegionBox, void (*)(void*)> owner(boxes, std::free);
    std::vector<FleckRect> regions;
    for (int i = 0; i < count; ++i)
        regions.push_back({boxes[i].top, boxes[i].bottom, boxes[i].left, boxes[i].right});
    return regions;
}

}  // namespace zellab
