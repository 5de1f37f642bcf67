#include "beautykernel/facefleckcleaner/fleckDetection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "beautykernel/facefleckcleaner/fleckTables.h"
#include "beautykernel/facefleckcleaner/fleckThreshold.h"
#include "beautykernel/facefleckcleaner/regionSelection.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/colour/yCbCr.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/masks/maskMorphology.h"

namespace zellab {

namespace {

constexpr double kHighlight = 2.4;                 // times the mean: what is brighter is no skin
constexpr int kFineRadius = 1, kCoarseRadius = 7;  // pixels of the blurs whose difference is a spot
constexpr Byte kSureSkin = 200;                    // skin above this takes part in the threshold
constexpr int kWidening = 2;                       // window of the maximum that widens spots
constexpr int kFillLimit = 560, kLongLimit = 720;  // in 1/256

/// Luminance with redness laid over it: red spots grow darker.
Plane<Byte> rednessPlane(ConstImageView crop) {
    Plane<Byte> plane(crop.width, crop.height);
    std::int64_t sum = 0;
    for (int py = 0; py < crop.height; ++py) {
        const Byte* p = crop.row(py);
        Byte* out = plane.view().row(py);
        for (int x = 0; x < crop.width; ++x, p += 4) {
            Byte y, cb, cr;
            RGBToYCbCr(p, p + 1, p + 2, &y, &cb, &cr);
            const int a = kFleckRedCurve[255u - cr];
            const int v = a < 128 ? y * a * 2 / 255 : 255 - (255 - y) * (255 - a) * 2 / 255;
            out[x] = static_cast<Byte>(v);
            sum += v;
        }
    }
    // Highlights would hide the spots beside them.
    const double limit = static_cast<double>(sum) * kHighlight / static_cast<double>(plane.size());
    if (limit < 255.0)
        std::replace_if(
            plane.data(), plane.data() + plane.size(),
            [t = static_cast<int>(limit)](Byte v) { return v > t; }, Byte{0});
    return plane;
}

Plane<Byte> blurred(PlaneView<const Byte> plane, int radius) {
    Plane<Byte> copy = copyOf(plane);
    StackBlurGray(copy.view(), radius);
    return copy;
}

}  // namespace

SpotLimits fleckLimits(int width, int height) {
    const auto side = static_cast<float>(std::min(width, height));
    const float a = std::clamp(side * 0.001f, 1.0f, 3.0f), b = std::max(side * 0.028f, 1.0f);
    SpotLimits limits;
    limits.smallestArea = static_cast<int>((2.0f * a) * (2.0f * a));
    limits.largestArea = static_cast<int>((2.0f * b) * (2.0f * b));
    limits.longestSide = static_cast<int>(std::sqrt(static_cast<float>(limits.largestArea)) * 1.15f + 0.5f);
    return limits;
}

bool isCompact(int boxWidth, int boxHeight, int area, int fillLimit, int longLimit) {
    const auto [shorter, longer] = std::minmax(boxWidth, boxHeight);
    return std::int64_t{boxWidth} * boxHeight * 256 / area < fillLimit && longer * 256 / shorter <= longLimit;
}

Plane<Byte> darkSpots(ConstImageView crop, PlaneView<const Byte> skinMask) {
    const Plane<Byte> redness = rednessPlane(crop);
    const Plane<Byte> fine = blurred(redness.view(), kFineRadius),
                      coarse = blurred(redness.view(), kCoarseRadius);
    Plane<Byte> spots(crop.width, crop.height);
    Histogram histogram{};
    for (int y = 0; y < crop.height; ++y) {
        const Byte *f = fine.view().row(y), *c = coarse.view().row(y), *skin = skinMask.row(y);
        Byte* out = spots.view().row(y);
        for (int x = 0; x < crop.width; ++x) {
            const int depth = std::max(c[x] - f[x], 0);
            out[x] = kFleckDepthCurve[static_cast<std::size_t>(255 - depth)];
            if (skin[x] > kSureSkin) ++histogram[out[x]];
        }
    }
    const int threshold = darkThreshold(histogram);
    std::transform(spots.data(), spots.data() + spots.size(), spots.data(),
                   [threshold](Byte v) { return v > threshold ? Byte{0} : Byte{255}; });
    MaxFilterBrute(spots.view(), kWidening);
    return spots;
}

FoundFlecks shapedLikeFlecks(PlaneView<const Byte> spots) {
    return selectRegions(spots, [&](PlaneView<const int> labels, std::size_t regions) {
        std::vector<int> area(regions + 1);
        for (int y = 0; y < labels.height; ++y)
            for (int x = 0; x < labels.width; ++x) ++area[static_cast<std::size_t>(labels.row(y)[x])];
        return
            [area, limits = fleckLimits(spots.width, spots.height)](std::size_t label, const FleckRect& box) {
                const auto sideFits = [&](int side) { return side >= 2 && side <= limits.longestSide; };
                const int size = area[label];
                return size >= limits.smallestArea && size <= limits.largestArea && sideFits(box.width()) &&
                       sideFits(box.height()) &&
                       isCompact(box.width(), box.height(), size, kFillLimit, kLongLimit);
            };
    });
}

void keepOnSkin(FoundFlecks& flecks, PlaneView<const Byte> skinMask) {
    std::vector<FleckRect> kept;
    for (std::size_t i = 0; i < flecks.boxes.size(); ++i) {
        const FleckRect box = flecks.boxes[i];
        const int label = static_cast<int>(i) + 1;
        const auto forEachPixel = [&](const auto& visit) {
            for (int y = box.top; y <= box.bottom; ++y)
                for (int x = box.left; x <= box.right; ++x)
                    if (int& l = flecks.labels.view().row(y)[x]; l == label)
                        visit(l, x, y, skinMask.row(y)[x] >= kSpotSkin);
        };
        int inside = 0, outside = 0;
        FleckRect cut{box.bottom, box.top, box.right, box.left};
        forEachPixel([&](int&, int x, int y, bool onSkin) {
            ++(onSkin ? inside : outside);
            if (!onSkin) return;
            cut = {std::min(cut.top, y), std::max(cut.bottom, y), std::min(cut.left, x),
                   std::max(cut.right, x)};
        });
        const bool isWhole = inside > outside, isDropped = !isWhole && inside * 2 <= outside;
        // New numbers are never above the old ones, so that they meet no label still to come.
        const int newLabel = static_cast<int>(kept.size()) + 1;
        forEachPixel(
            [&](int& l, int, int, bool onSkin) { l = isDropped || (!isWhole && !onSkin) ? 0 : newLabel; });
        if (!isDropped) kept.push_back(isWhole ? box : cut);
    }
    flecks.boxes = std::move(kept);
}

}  // namespace zellab
