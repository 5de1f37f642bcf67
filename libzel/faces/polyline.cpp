#include "libzel/faces/polyline.h"

#include <algorithm>
#include <cmath>

namespace zel {

using zellab::Vector2f;
using zellab::operator-;

namespace {

float dot(Vector2f a, Vector2f b) {
    return a.x * b.x + a.y * b.y;
}

float cross(Vector2f a, Vector2f b) {
    return a.x * b.y - a.y * b.x;
}

}  // namespace

Vector2f across(const Polyline& line, float t) {
    const Vector2f start = line.front(), axis = line.back() - start;
    const float wanted = t * dot(axis, axis);
    for (std::size_t i = 1; i < line.size(); ++i) {
        const float before = dot(line[i - 1] - start, axis), here = dot(line[i] - start, axis);
        if (here < wanted) continue;
        return here > before
                   ? zellab::mix(line[i - 1], line[i], std::max(0.0f, (wanted - before) / (here - before)))
                   : line[i];
    }
    return line.back();
}

Vector2f along(const Polyline& line, float t) {
    const auto lengthOf = [&](std::size_t i) {
        const Vector2f step = line[i] - line[i - 1];
        return std::hypot(step.x, step.y);
    };
    float whole = 0;
    for (std::size_t i = 1; i < line.size(); ++i) whole += lengthOf(i);
    float left = t * whole;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const float length = lengthOf(i);
        if (left <= length && length > 0) return zellab::mix(line[i - 1], line[i], left / length);
        left -= length;
    }
    return line.back();
}

Polyline convexHull(Polyline points) {
    std::sort(points.begin(), points.end(),
              [](Vector2f a, Vector2f b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    Polyline hull;
    // The lower chain from left to right, then the upper one back.
    const auto addChain = [&hull](auto first, auto last) {
        const std::size_t start = hull.size();
        for (; first != last; ++first) {
            while (hull.size() >= start + 2 &&
                   cross(hull.back() - hull[hull.size() - 2], *first - hull.back()) <= 0)
                hull.pop_back();
            hull.push_back(*first);
        }
        hull.pop_back();  // begins the other chain
    };
    if (points.size() < 3) return points;
    addChain(points.begin(), points.end());
    addChain(points.rbegin(), points.rend());
    return hull;
}

}  // namespace zel
