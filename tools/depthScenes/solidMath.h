#pragma once

#include "portrait/portraitMath.h"

/// Distances from solids, as a marching ray needs them: above 0 outside, never far above the truth.

namespace zeldepth {

using zel::drawing::Vec3;

inline float lengthOf(Vec3 a) {
    return std::sqrt(zel::drawing::dot(a, a));
}

inline float fromEllipsoid(Vec3 p, Vec3 centre, Vec3 radii) {
    const Vec3 q = p - centre;
    const Vec3 a{q.x / radii.x, q.y / radii.y, q.z / radii.z};
    const Vec3 b{a.x / radii.x, a.y / radii.y, a.z / radii.z};
    const float share = lengthOf(a), slope = lengthOf(b);
    return slope < 1e-6f ? -std::min({radii.x, radii.y, radii.z}) : share * (share - 1) / slope;
}

/// A capsule whose radius changes from `ra` to `rb`.
inline float fromCapsule(Vec3 p, Vec3 a, Vec3 b, float ra, float rb) {
    const Vec3 along = b - a, q = p - a;
    const float t = zel::drawing::clamp01(dot(q, along) / std::max(dot(along, along), 1e-9f));
    return lengthOf(q - along * t) - (ra + (rb - ra) * t);
}

inline float fromBox(Vec3 p, Vec3 centre, Vec3 half, float rounding) {
    const Vec3 q{std::fabs(p.x - centre.x) - half.x, std::fabs(p.y - centre.y) - half.y,
                 std::fabs(p.z - centre.z) - half.z};
    const Vec3 out{std::max(q.x, 0.0f), std::max(q.y, 0.0f), std::max(q.z, 0.0f)};
    return lengthOf(out) + std::min(std::max({q.x, q.y, q.z}), 0.0f) - rounding;
}

/// Union of two distances with a fillet of about `k`.
inline float joined(float a, float b, float k) {
    const float h = std::max(k - std::fabs(a - b), 0.0f) / k;
    return std::min(a, b) - h * h * k * 0.25f;
}

/// `a` without `b`, with a fillet of about `k`.
inline float without(float a, float b, float k) {
    return -joined(-a, b, k);
}

inline Vec3 turnedY(Vec3 p, float sine, float cosine) {
    return {p.x * cosine + p.z * sine, p.y, p.z * cosine - p.x * sine};
}
inline Vec3 turnedX(Vec3 p, float sine, float cosine) {
    return {p.x, p.y * cosine - p.z * sine, p.y * sine + p.z * cosine};
}
inline Vec3 turnedZ(Vec3 p, float sine, float cosine) {
    return {p.x * cosine - p.y * sine, p.x * sine + p.y * cosine, p.z};
}

}  // namespace zeldepth
