#include "beautykernel/blackeyecleaner/skinEvenness.h"

#include <algorithm>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/edges/edgeDetect.h"

namespace zellab {

namespace {

constexpr int kEdgeLow = 10, kEdgeHigh = 30;
constexpr float kUnevenShare = 0.3f;  // of edge pixels on a cheek
constexpr float kDarkShare = 0.04f;   // of dark pixels at the inner corner
constexpr int kDarkLuma = 70;
constexpr float kTurnedAside = 4.0f;  // one half of the face this many times as wide as the other

/// Positions in the interpolated list.
constexpr int kNoseCentre = 48, kLeftRingEnd = 119, kRightRingEnd = 139;
constexpr int kLeftOuter = 0, kLeftInner = 5, kLeftRingBottom = 115;
constexpr int kRightInner = 10, kRightOuter = 15, kRightRingBottom = 135;

int luma(const Byte* p) {
    return ((5 * p[1] + p[2]) * 15 + 38 * p[0]) >> 7;
}

/// Columns from x0 to x1 and `height` rows from y on, in pixels of the picture, as far as they lie in it.
Plane<Byte> lumaPatch(ConstImageView image, float x0, float x1, float y, float height) {
    const auto inside = [](float v, int size) {
        return static_cast<int>(v > 0.0f ? std::min(v, static_cast<float>(size)) : 0.0f);
    };
    const int left = inside(std::min(x0, x1), image.width), right = inside(std::max(x0, x1), image.width);
    const int top = inside(y, image.height), bottom = inside(y + height, image.height);
    Plane<Byte> patch(right - left, bottom - top);
    for (int row = 0; row < patch.height(); ++row)
        for (int column = 0; column < patch.width(); ++column)
            patch.view().row(row)[column] = static_cast<Byte>(luma(image.at(left + column, top + row)));
    return patch;
}

float share(const Plane<Byte>& plane, const auto& counts) {
    if (plane.size() == 0) return 0.0f;
    const auto count = std::count_if(plane.data(), plane.data() + plane.size(), counts);
    return static_cast<float>(count) / static_cast<float>(plane.size());
}

/// Share of edge pixels on the cheek below an eye.
float cheekEdges(ConstImageView image, Vector2f outer, Vector2f inner, float below) {
    const float side = std::abs(inner.x - outer.x);
    const Plane<Byte> patch = lumaPatch(image, outer.x, inner.x, below, side / 2.0f);
    Plane<Byte> edges(patch.width(), patch.height());
    EdgeDetectCanny(patch.view(), edges.view(), kEdgeLow, kEdgeHigh, false);
    return share(edges, [](Byte e) { return e > 254; });
}

}  // namespace

bool allowsSeamlessRepair(ConstImageView image, const EyeRegion& region, const Vector2f* points) {
    const float left = points[kNoseCentre].x - points[kLeftRingEnd].x;
    const float right = points[kRightRingEnd].x - points[kNoseCentre].x;
    if (left > kTurnedAside * right || right > kTurnedAside * left) return false;

    const float first = cheekEdges(image, points[kLeftOuter], points[kLeftInner], points[kLeftRingBottom].y);
    if (first > kUnevenShare) return false;
    // A second cheek with few edges, but some, forbids it as well; one with many does not. That is how it
    // stands.
    const float second =
        cheekEdges(image, points[kRightInner], points[kRightOuter], points[kRightRingBottom].y);
    if (second > 0.0f && second < kUnevenShare) return false;

    const Vector2f corner = points[kLeftInner];
    const float stripWidth = std::max(static_cast<float>(region.face.width) / 50.0f, 1.0f);
    const Plane<Byte> strip =
        lumaPatch(image, corner.x, corner.x + stripWidth, corner.y, points[kLeftRingBottom].y - corner.y);
    return share(strip, [](Byte l) { return l <= kDarkLuma; }) <= kDarkShare;
}

}  // namespace zellab
