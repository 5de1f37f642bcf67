#include "beautykernel/facefleckcleaner/fineSpotTest.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "beautykernel/facefleckcleaner/fleckDetection.h"
#include "beautykernel/facefleckcleaner/regionSelection.h"

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
    return selectRegions(spots, [&](PlaneView<const int> labels, std::size_t regions) {
        const SpotLimits size = sizeLimits(spots.width, spots.height, limits.sizeFactor);
        return [&limits, size, pixels = countPixels(labels, skinMask, regions)](std::size_t label,
                                                                                const FleckRect& box) {
            const auto sideFits = [&](int side) { return side >= 2 && side <= size.longestSide; };
            const SpotPixels& spot = pixels[label];
            return spot.area >= size.smallestArea && spot.area <= size.largestArea &&
                   spot.outside * 2 <= spot.inside && sideFits(box.width()) && sideFits(box.height()) &&
                   isCompact(box.width(), box.height(), static_cast<int>(spot.area), limits.fillLimit,
                             limits.longLimit);
        };
    });
}

}  // namespace zellab
