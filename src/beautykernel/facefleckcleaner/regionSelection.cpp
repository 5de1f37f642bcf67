#include "beautykernel/facefleckcleaner/regionSelection.h"

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace zellab {

std::vector<FleckRect> labelRegions(PlaneView<const Byte> mask, Plane<int>& labels) {
    labels = Plane<int>(mask.width, mask.height);
    std::vector<FleckRect> regions;
    for (const RegionBox& box : LabelConnectedRuns(mask, labels.view()))
        regions.push_back({box.top, box.bottom, box.left, box.right});
    return regions;
}

}  // namespace zellab
