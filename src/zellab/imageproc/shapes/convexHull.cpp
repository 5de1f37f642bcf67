#include "zellab/imageproc/shapes/convexHull.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "zellab/geometry/vector2.h"

namespace zellab {

namespace {

bool same(Vector2f a, Vector2f b) {
    return a.x == b.x && a.y == b.y;
}

/// The least y, the largest x among equals; nothing where the points cannot be sorted by angle.
std::optional<Vector2f> pivotOf(const std::vector<Vector2f>& points) {
    const bool finite = std::all_of(points.begin(), points.end(),
                                    [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); });
    if (points.empty() || !finite) return std::nullopt;
    return *std::min_element(points.begin(), points.end(),
                             [](Vector2f a, Vector2f b) { return a.y < b.y || (a.y == b.y && a.x > b.x); });
}

/// The pivot, then all other points, sorted, each once.
template <typename Before>
std::vector<Vector2f> sortedAround(Vector2f pivot, const std::vector<Vector2f>& points,
                                   const Before& before) {
    std::vector<Vector2f> others;
    std::copy_if(points.begin(), points.end(), std::back_inserter(others),
                 [&](Vector2f p) { return !same(p, pivot); });
    std::stable_sort(others.begin(), others.end(), before);
    std::vector<Vector2f> sorted{pivot};
    for (const Vector2f p : others)
        if (!same(sorted.back(), p)) sorted.push_back(p);
    return sorted;
}

/// Removes the points at which stays(before, point, after) fails, from the first on and stepping back.
template <typename Stays>
void walk(std::vector<Vector2f>& hull, const Stays& stays) {
    for (std::size_t i = 1; i + 1 < hull.size();) {
        if (stays(hull[i - 1], hull[i], hull[i + 1])) {
            ++i;
        } else {
            hull.erase(hull.begin() + static_cast<std::ptrdiff_t>(i));
            if (i > 1) --i;
        }
    }
}

/// Above 0 where a, b, c turn by rising angle, 0 on a line.
double cross(Vector2f a, Vector2f b, Vector2f c) {
    return (double{b.x} - a.x) * (double{c.y} - a.y) - (double{b.y} - a.y) * (double{c.x} - a.x);
}

double squaredDistance(Vector2f a, Vector2f b) {
    const double x = double{b.x} - a.x, y = double{b.y} - a.y;
    return x * x + y * y;
}

/// The cosine of a point's direction from the pivot, and how far it lies.
struct Direction {
    float cosine, distance;

    Direction(Vector2f pivot, Vector2f point) {
        const Vector2f d = point - pivot;
        distance = std::sqrt(d.x * d.x + d.y * d.y);
        cosine = d.x / distance;
    }
};

}  // namespace

std::vector<Vector2f> convexHull(const std::vector<Vector2f>& points) {
    const std::optional<Vector2f> pivot = pivotOf(points);
    if (!pivot) return points;
    std::vector<Vector2f> hull = sortedAround(*pivot, points, [&](Vector2f a, Vector2f b) {
        const double turn = cross(*pivot, a, b);
        return turn > 0 || (turn == 0 && squaredDistance(*pivot, a) < squaredDistance(*pivot, b));
    });
    if (hull.size() < 3) return points;
    walk(hull,
         [](Vector2f before, Vector2f point, Vector2f after) { return cross(before, point, after) >= 0; });
    return hull;
}

std::vector<Vector2f> wholeTurnHull(const std::vector<Vector2f>& points) {
    const std::optional<Vector2f> pivot = pivotOf(points);
    if (!pivot) return points;
    std::vector<Vector2f> hull = sortedAround(*pivot, points, [&](Vector2f a, Vector2f b) {
        const Direction first(*pivot, a), second(*pivot, b);
        return first.cosine > second.cosine ||
               (first.cosine == second.cosine && first.distance < second.distance);
    });
    if (hull.size() < 3) return points;
    walk(hull, [](Vector2f before, Vector2f point, Vector2f after) {
        const Vector2f in = point - before, out = after - point;
        const float left = std::trunc(in.y * out.x), right = std::trunc(in.x * out.y);
        return left < right || (left == right && in.x * out.x > 0.0f && in.y * out.y > 0.0f);
    });
    return hull;
}

}  // namespace zellab
