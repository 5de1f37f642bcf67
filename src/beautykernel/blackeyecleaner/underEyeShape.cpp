#include "beautykernel/blackeyecleaner/underEyeShape.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zellab/geometry/vector2.h"

namespace zellab {

namespace {

constexpr int kSegmentSamples = 20;

void appendBezier(std::vector<Vector2f>& contour, Vector2f a, Vector2f b, Vector2f c, Vector2f d) {
    for (int i = 0; i < kSegmentSamples; ++i) {
        const float t = static_cast<float>(i) / kSegmentSamples;
        const Vector2f ab = mix(a, b, t), bc = mix(b, c, t), cd = mix(c, d, t);
        contour.push_back(mix(mix(ab, bc, t), mix(bc, cd, t), t));
    }
}

/// From an end to the middle of the upper edge: it stays as close to the lid as the end is, and comes down to
/// the middle at last.
void appendUpperHalf(std::vector<Vector2f>& contour, Vector2f end, Vector2f middle, bool fromEnd) {
    constexpr float kAlong = 0.6f, kFollow = 0.8f, kAbove = 0.8f;  // handles, as shares of the way
    const Vector2f along = {end.x + (middle.x - end.x) * kAlong, end.y + (middle.y - end.y) * kFollow};
    const Vector2f above = {middle.x, middle.y - (middle.y - end.y) * kAbove};
    if (fromEnd) {
        appendBezier(contour, end, along, above, middle);
    } else {
        appendBezier(contour, middle, above, along, end);
    }
}

/// The lower edge bows down from an end and is level in its middle.
void appendLowerHalf(std::vector<Vector2f>& contour, Vector2f end, Vector2f middle, bool fromEnd) {
    constexpr float kInwards = 0.15f, kDown = 0.6f, kLevel = 0.6f;
    const Vector2f down = {end.x + (middle.x - end.x) * kInwards, end.y + (middle.y - end.y) * kDown};
    const Vector2f level = {middle.x + (end.x - middle.x) * kLevel, middle.y};
    if (fromEnd) {
        appendBezier(contour, end, down, level, middle);
    } else {
        appendBezier(contour, middle, level, down, end);
    }
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
            const auto width = static_cast<float>(plane.width);
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
    appendUpperHalf(contour, shape.outerEnd, shape.middle, true);
    appendUpperHalf(contour, shape.innerEnd, shape.middle, false);
    appendLowerHalf(contour, shape.innerEnd, lower, true);
    appendLowerHalf(contour, shape.outerEnd, lower, false);
    const bool finite = std::all_of(contour.begin(), contour.end(),
                                    [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); });
    if (finite) fillInside(plane, contour);
}

}  // namespace zellab
