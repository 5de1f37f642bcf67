#pragma once

#include "zel_effects/zel_records.h"

/// Arithmetic of points in the plane, in single precision.

namespace zellab {

constexpr Vector2f operator+(Vector2f a, Vector2f b) {
    return {a.x + b.x, a.y + b.y};
}

constexpr Vector2f operator-(Vector2f a, Vector2f b) {
    return {a.x - b.x, a.y - b.y};
}

constexpr Vector2f operator*(Vector2f a, float factor) {
    return {a.x * factor, a.y * factor};
}

/// The point at `share` of the way from a to b.
constexpr Vector2f mix(Vector2f a, Vector2f b, float share) {
    return a + (b - a) * share;
}

}  // namespace zellab
