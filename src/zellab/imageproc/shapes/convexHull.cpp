#include "zellab/imageproc/shapes/convexHull.h"

#include <algorithm>
#include <cmath>

namespace zellab {

namespace {

bool same(Vector2f a, Vector2f b) {
    return a.x == b.x && a.y == b.y;
}
Vector2f minus(Vector2f a, Vector2f b) {
    return {a.x - b.x, a.y - b.y};
}

/// A point as seen from the pivot: the cosine of its direction, and how far it lies.
struct Seen {
    Vector2f point;
    float cosine, distance;
};

std::vector<Vector2f> sortedAround(Vector2f pivot, const std::vector<Vector2f>& points) {
    std::vector<Seen> seen;
    for (const Vector2f p : points) {
        if (same(p, pivot)) continue;
        const Vector2f d = minus(p, pivot);
        const float distance = std::sqrt(d.x * d.x + d.y * d.y);
        seen.push_back({p, d.x / distance, distance});
    }
    std::stable_sort(seen.begin(), seen.end(), [](const Seen& a, const Seen& b) {
        return a.cosine > b.cosine || (a.cosine == b.cosine && a.distance < b.distance);
    });
    std::vector<Vector2f> sorted{pivot};
    for (const Seen& s : seen)
        if (!same(sorted.back(), s.point)) sorted.push_back(s.point);
    return sorted;
}

/// Whether the middle of three points stays, with the edges that lead to it and from it.
bool turnsOutwards(Vector2f in, Vector2f out) {
    const float left = std::trunc(in.y * out.x), right = std::trunc(in.x * out.y);
    return left < right || (left == right && in.x * out.x > 0.0f && in.y * out.y > 0.0f);
}

}  // namespace

std::vector<Vector2f> convexHull(const std::vector<Vector2f>& points) {
    const bool finite = std::all_of(points.begin(), points.end(),
                                    [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); });
    if (points.empty() || !finite) return points;  // nothing can be sorted by angle
    const Vector2f pivot = *std::min_element(points.begin(), points.end(), [](Vector2f a, Vector2f b) {
        return a.y < b.y || (a.y == b.y && a.x > b.x);
    });
    std::vector<Vector2f> hull = sortedAround(pivot, points);
    if (hull.size() < 3) return points;
    for (std::size_t i = 1; i + 1 < hull.size();) {
        if (turnsOutwards(minus(hull[i], hull[i - 1]), minus(hull[i + 1], hull[i]))) {
            ++i;
        } else {
            hull.erase(hull.begin() + static_cast<std::ptrdiff_t>(i));
            if (i > 1) --i;
        }
    }
    return hull;
}

}  // namespace zellab
