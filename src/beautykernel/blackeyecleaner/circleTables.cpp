#include "beautykernel/blackeyecleaner/circleTables.h"

namespace zellab {

namespace {

/// A point of the curve and its slope there.
struct Knot {
    float x, y, slope;
};

/// Found for the values at both ends; the middle lies below the diagonal and is steep.
constexpr Knot kKnots[] = {{0.0f, 0.0f, 0.72f}, {128.0f, 44.0f, 0.75f}, {255.0f, 255.0f, 0.52f}};

/// Cubic through two knots with their slopes.
float between(const Knot& a, const Knot& b, float x) {
    const float width = b.x - a.x, t = (x - a.x) / width, t2 = t * t, t3 = t2 * t;
    return (2.0f * t3 - 3.0f * t2 + 1.0f) * a.y + (t3 - 2.0f * t2 + t) * width * a.slope +
           (3.0f * t2 - 2.0f * t3) * b.y + (t3 - t2) * width * b.slope;
}

}  // namespace

const std::array<unsigned char, 256>& circleCoreCurve() {
    static const std::array<unsigned char, 256> kCurve = [] {
        std::array<unsigned char, 256> curve{};
        for (std::size_t i = 0; i < curve.size(); ++i) {
            const std::size_t piece = i < 128 ? 0 : 1;
            curve[i] = static_cast<unsigned char>(
                between(kKnots[piece], kKnots[piece + 1], static_cast<float>(i)) + 0.5f);
        }
        return curve;
    }();
    return kCurve;
}

}  // namespace zellab
