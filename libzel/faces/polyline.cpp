#include "libzel/faces/polyline.h"

#include <algorithm>
#include <cmath>

namespace zel {

using zellab::Vector2f;

namespace {

float dot(Vector2f a, Vector2f b) {
    return a.x * b.x + a.y * b.y;
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

}  // namespace zel
