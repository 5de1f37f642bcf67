#include "beautykernel/blackeyecleaner/underEyeShape.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zellab {

namespace {

constexpr int kSegmentSamples = 20;

Vector2f mix(Vector2f a, Vector2f b, float t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

void appendBezier(std::vector<Vector2f>& contour, Vector2f a, Vector2f b, Vector2f c, Vector2f d) {
    for (int i = 0; i < kSegmentSamples; ++i) {
        const float t = static_cast<float>(i) / kSegmentSamples;
        const Vector2f ab = mix(a, b, t), bc = mix(b, c, t), cd = mix(c, d, t);
        contour.push_back(mix(mix(ab, bc, t), mix(bc, cd, t), t));
    }
}

/// From an end to the middle of an edge, level at the middle and pointed at the end.
void appendHalf(std::vector<Vector2f>& contour, Vector2f from, Vector2f to, bool pointedFirst) {
    constexpr float kPointed = 0.35f, kLevel = 0.5f;  // lengths of the handles, as a share of the way
    const Vector2f level = {
        pointedFirst ? to.x + (from.x - to.x) * kLevel : from.x + (to.x - from.x) * kLevel,
        pointedFirst ? to.y : from.y};
    const Vector2f pointed = pointedFirst ? mix(from, to, kPointed) : mix(to, from, kPointed);
    appendBezier(contour, from, pointedFirst ? pointed : level, pointedFirst ? level : pointed, to);
}

/// Fills every pixel whose centre the contour encloses: a crescent has two horns on its upper rows, and the
/// eye lies between them.
void fillInside(PlaneView<Byte> plane, const std::vector<Vector2f>& contour) {
    std::vector<float> crossings;
    for (int y = 0; y < plane.height; ++y) {
        const auto fy = static_cast<float>(y);
        crossings.clear();
        for (std::size_t i = 0; i < contour.size(); ++i) {
            const Vector2f a = contour[i], b = contour[(i + 1) % contour.size()];
            if ((a.y <= fy) != (b.y <= fy)) crossings.push_back(a.x + (b.x - a.x) * (fy - a.y) / (b.y - a.y));
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
            const float width = static_cast<float>(plane.width);
            const int first = static_cast<int>(std::ceil(std::clamp(crossings[i], 0.0f, width)));
            const int last = static_cast<int>(std::ceil(std::clamp(crossings[i + 1], 0.0f, width)));
            std::fill(plane.row(y) + first, plane.row(y) + std::max(first, last), Byte{255});
        }
    }
}

}  // namespace

void drawUnderEyeShape(PlaneView<Byte> plane, const UnderEyeShape& shape) {
    const Vector2f lower = {shape.middle.x, shape.middle.y + static_cast<float>(shape.band)};
    std::vector<Vector2f> contour;
    appendHalf(contour, shape.outerEnd, shape.middle, true);
    appendHalf(contour, shape.middle, shape.innerEnd, false);
    appendHalf(contour, shape.innerEnd, lower, true);
    appendHalf(contour, lower, shape.outerEnd, false);
    const bool finite = std::all_of(contour.begin(), contour.end(),
                                    [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); });
    if (finite) fillInside(plane, contour);
}

}  // namespace zellab
