#include "beautykernel/eyebright/eyeGeometry.h"

#include <algorithm>
#include <cmath>

#include "beautykernel/eyebright/irisFinder.h"
#include "zellab/imageproc/core/floatToInt.h"

namespace zellab {

namespace {

/// Positions in the interpolated list.
struct EyeIndices {
    std::array<std::size_t, EyeLids::kPoints> upper, lower;
    std::size_t pupil;
};
constexpr EyeIndices kLeftEye = {{0, 1, 2, 3, 4, 5}, {0, 6, 7, 8, 9, 5}, 169};
constexpr EyeIndices kRightEye = {{10, 11, 12, 13, 14, 15}, {10, 16, 17, 18, 19, 15}, 170};

/// Positions in a curve: its corners, and the two points around its middle.
constexpr std::size_t kFirstCorner = 0, kLastCorner = 5, kMiddle = 2;

constexpr int kSearchMargin = 5;       // pixels around the lids
constexpr float kFlatEye = 0.35f;      // height over width below which the search looks further up and down
constexpr int kFlatMargin = 10;        // by so many rows
constexpr float kLeastPupilX = 0.33f;  // of the lids' length: a landmark nearer to column 0 was never set
constexpr float kLeastPupilY = 0.5f;   // of the lids' gap, likewise for row 0
constexpr int kFarthestLid = 1 << 20;  // pixels: keeps sums of lid points within an int

const EyeIndices& indicesOf(EyeSide side) {
    return side == EyeSide::left ? kLeftEye : kRightEye;
}

/// Inclusive corners of a box, on their way through margins and clips.
struct Corners {
    int left, top, right, bottom;

    void widen(int columns, int rows) {
        left -= columns, right += columns;
        top -= rows, bottom += rows;
    }
    void clip(int width, int height) {
        left = std::max(left, 0), top = std::max(top, 0);
        right = std::min(right, width - 1), bottom = std::min(bottom, height - 1);
    }
    EyeBox box() const { return {left, top, right - left + 1, bottom - top + 1}; }
};

Corners cornersOf(const EyeLids& lids) {
    Corners corners = {kFarthestLid, kFarthestLid, -kFarthestLid, -kFarthestLid};
    for (const auto* curve : {&lids.upper, &lids.lower})
        for (const LidPoint& p : *curve) {
            corners.left = std::min(corners.left, p.x), corners.right = std::max(corners.right, p.x);
            corners.top = std::min(corners.top, p.y), corners.bottom = std::max(corners.bottom, p.y);
        }
    return corners;
}

EyeBox searchBox(const EyeLids& lids, int width, int height) {
    Corners corners = cornersOf(lids);
    corners.clip(width, height);
    if (corners.box().empty()) return {};
    corners.widen(kSearchMargin, kSearchMargin);
    corners.clip(width, height);
    const EyeBox box = corners.box();
    if (static_cast<float>(box.height) / static_cast<float>(box.width) < kFlatEye) {
        corners.widen(0, kFlatMargin);
        corners.clip(width, height);
    }
    return corners.box();
}

float distance(const Vector2f& a, const Vector2f& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

Vector2f middle(const Vector2f& a, const Vector2f& b) {
    return {(a.x + b.x) / 2.0f, (a.y + b.y) / 2.0f};
}

/// In pixels: from corner to corner, and between the middles of the lids.
struct EyeMeasure {
    float length, gap;
};

EyeMeasure measureOf(const Vector2f* points, const EyeIndices& at) {
    return {distance(points[at.upper[kFirstCorner]], points[at.upper[kLastCorner]]),
            distance(middle(points[at.upper[kMiddle]], points[at.upper[kMiddle + 1]]),
                     middle(points[at.lower[kMiddle]], points[at.lower[kMiddle + 1]]))};
}

}  // namespace

EyeLids lidsOf(const Vector2f* points, EyeSide side) {
    const auto whole = [](float v) { return std::clamp(truncateToInt(v), -kFarthestLid, kFarthestLid); };
    const EyeIndices& at = indicesOf(side);
    EyeLids lids;
    for (std::size_t i = 0; i < EyeLids::kPoints; ++i) {
        lids.upper[i] = {whole(points[at.upper[i]].x), whole(points[at.upper[i]].y)};
        lids.lower[i] = {whole(points[at.lower[i]].x), whole(points[at.lower[i]].y)};
    }
    return lids;
}

EyeBox eyeBox(const EyeLids& lids, int width, int height) {
    Corners corners = cornersOf(lids);
    corners.clip(width, height);
    corners.left = std::max(corners.left, 1), corners.top = std::max(corners.top, 1);
    const EyeBox box = corners.box();
    return box.empty() || box.width >= width || box.height >= height ? EyeBox{} : box;
}

float lidGap(const Vector2f* points, EyeSide side) {
    const EyeMeasure eye = measureOf(points, indicesOf(side));
    return eye.length > 0 ? eye.gap / eye.length : 0;
}

Iris locateIris(ConstImageView picture, const Vector2f* points, EyeSide side) {
    const EyeIndices& at = indicesOf(side);
    const Vector2f& pupil = points[at.pupil];
    const auto [length, gap] = measureOf(points, at);
    if (std::abs(pupil.x) < length * kLeastPupilX || std::abs(pupil.y) < gap * kLeastPupilY) return {};
    const EyeBox box = searchBox(lidsOf(points, side), picture.width, picture.height);
    if (box.empty()) return {};
    const auto left = static_cast<float>(box.x), top = static_cast<float>(box.y);
    Iris iris = findIris(picture.crop(box.x, box.y, box.width, box.height),
                         {pupil.x - left, pupil.y - top, length, gap});
    if (iris.found()) iris.x += left, iris.y += top;
    return iris;
}

}  // namespace zellab
