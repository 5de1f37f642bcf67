#include "beautykernel/facefleckcleaner/fineSpotTest.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "beautykernel/facefleckcleaner/fleckDetection.h"
#include "zellab/imageproc/regionLabelling.h"

namespace zellab {

namespace {

constexpr Byte kExcluded = 1;  // one such pixel turns a spot away

struct SpotPixels {
    std::int64_t inside = 0, outside = 0;
    std::int64_t area = 0;
};

/// Counts the pixels of every label. A pixel where the mask is 1 counts as a whole picture off the skin.
std::vector<SpotPixels> countPixels(PlaneView<const int> labels, PlaneView<const Byte> skinMask,
                                    std::size_t count) {
    std::vector<SpotPixels> spots(count + 1);
    const auto whole = static_cast<std::int64_t>(sampleCount(labels.width, labels.height));
    for (int y = 0; y < labels.height; ++y)
        for (int x = 0; x < labels.width; ++x) {
            SpotPixels& spot = spots[static_cast<std::size_t>(labels.row(y)[x])];
            const Byte skin = skinMask.row(y)[x];
            ++spot.area;
            if (skin >= kSpotSkin) {
                ++spot.inside;
            } else {
                spot.outside += skin == kExcluded ? whole : 1;
            }
        }
    return spots;
}

SpotLimits sizeLimits(int width, int height, float sizeFactor) {
    const auto side = static_cast<float>(std::min(width, height));
    const float a = std::max(side * 0.035f, 3.0f), b = std::max(side * sizeFactor, 2.0f);
    SpotLimits limits;
    limits.largestArea = static_cast<int>((2.0f * a) * (2.0f * a));
    limits.smallestArea = static_cast<int>((2.0f * b) * (2.0f * b));
    limits.longestSide = static_cast<int>(std::sqrt(static_cast<float>(limits.largestArea)) * 1.5f + 0.5f);
    return limits;
}

}  // namespace

FoundFlecks passingSpots(PlaneView<const Byte> spots, PlaneView<const Byte> skinMask,
                         const FineSpotLimits& limits) {
    FoundFlecks found;
    found.labels = Plane<int>(spots.width, spots.height);
    RegionBox* boxes = nullptr;
    const int count = LabelConnectedRuns(spots.data, found.labels.data(), spots.width, spots.height, &boxes);
    const std::unique_ptr<RegionBox, void (*)(void*)> owner(boxes, std::free);
    if (count < 1) return found;

    const auto regions = static_cast<std::size_t>(count);
    const std::vector<SpotPixels> pixels = countPixels(found.labels.view(), skinMask, regions);
    const SpotLimits size = sizeLimits(spots.width, spots.height, limits.sizeFactor);
    const auto sideFits = [&](int side) { return side >= 2 && side <= size.longestSide; };
    std::vector<int> newLabel(regions + 1);
    for (std::size_t i = 0; i < regions; ++i) {
        const FleckRect box{boxes[i].top, boxes[i].bottom, boxes[i].left, boxes[i].right};
        const SpotPixels& spot = pixels[i + 1];
        if (spot.area < size.smallestArea || spot.area > size.largestArea || spot.outside * 2 > spot.inside ||
            !sideFits(box.width()) || !sideFits(box.height()) ||
            !isCompact(box.width(), box.height(), static_cast<int>(spot.area), limits.fillLimit,
                       limits.longLimit))
            continue;
        found.boxes.push_back(box);
        newLabel[i + 1] = static_cast<int>(found.boxes.size());
    }
    for (int *l = found.labels.data(), *end = l + found.labels.size(); l < end; ++l)
        *l = newLabel[static_cast<std::size_t>(*l)];
    return found;
}

}  // namespace zellab
