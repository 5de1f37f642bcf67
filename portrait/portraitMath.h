#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "zellab/geometry/vector2.h"

/// Small vectors and the few functions that the C library computes differently from one processor to the
/// next. The picture must have the same bytes everywhere, so only operations that IEEE 754 fixes stand below:
/// sums, products, quotients, roots and floor.

namespace zel::drawing {

using Vec2 = zellab::Vector2f;
inline float dot(Vec2 a, Vec2 b) {
    return a.x * b.x + a.y * b.y;
}
inline float length(Vec2 a) {
    return std::sqrt(dot(a, a));
}

/// A point or direction in space (x right, y down, z towards the camera), or a linear colour (red, green,
/// blue).
struct Vec3 {
    float x = 0, y = 0, z = 0;
};
using Colour = Vec3;
inline Vec3 operator+(Vec3 a, Vec3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(Vec3 a, Vec3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(Vec3 a, Vec3 b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline Vec3 operator*(Vec3 a, float s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline float dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 normalized(Vec3 a) {
    return a * (1.0f / std::sqrt(std::max(dot(a, a), 1e-12f)));
}

inline constexpr float kPi = 3.14159265f;
inline float radians(float degrees) {
    return degrees * (kPi / 180.0f);
}

inline float clamp01(float v) {
    return std::min(std::max(v, 0.0f), 1.0f);
}
inline float mix(float a, float b, float t) {
    return a + (b - a) * t;
}
inline Vec3 mix(Vec3 a, Vec3 b, float t) {
    return a + (b - a) * t;
}
inline float square(float v) {
    return v * v;
}

/// 0 below `from`, 1 above `to`, smooth between; `from` may be the larger.
inline float smoothStep(float from, float to, float v) {
    const float t = clamp01((v - from) / (to - from));
    return t * t * (3.0f - 2.0f * t);
}

inline float exp2Of(float v) {
    v = std::min(std::max(v, -120.0f), 120.0f);
    const float whole = std::floor(v);
    const float f = v - whole;
    const float fraction =
        1.0f +
        f * (0.69314718f +
             f * (0.24022651f + f * (0.05550411f + f * (0.00961813f + f * (0.00133336f + f * 0.00015403f)))));
    return std::bit_cast<float>(static_cast<std::uint32_t>(static_cast<int>(whole) + 127) << 23) * fraction;
}

inline float expOf(float v) {
    return exp2Of(v * 1.44269504f);
}

/// Binary logarithm of a normal number above 0.
inline float log2Of(float v) {
    const auto bits = std::bit_cast<std::uint32_t>(v);
    const auto exponent = static_cast<float>(static_cast<int>(bits >> 23) - 127);
    const auto mantissa = std::bit_cast<float>((bits & 0x7FFFFFu) | 0x3F800000u);
    const float t = (mantissa - 1.0f) / (mantissa + 1.0f), u = t * t;
    return exponent + 2.88539008f * t * (1.0f + u * (1.0f / 3 + u * (1.0f / 5 + u * (1.0f / 7 + u / 9))));
}

/// base to the power, 0 for a base of 0 or below.
inline float powerOf(float base, float power) {
    return base <= 1e-30f ? 0.0f : exp2Of(power * log2Of(base));
}

inline float sineOf(float angle) {
    float turn = angle * (0.5f / kPi);
    turn -= std::floor(turn + 0.5f);
    if (turn > 0.25f) turn = 0.5f - turn;
    if (turn < -0.25f) turn = -0.5f - turn;
    const float a = turn * 2.0f * kPi, u = a * a;
    return a * (1.0f + u * (-1.0f / 6 + u * (1.0f / 120 + u * (-1.0f / 5040 + u / 362880))));
}
inline float cosineOf(float angle) {
    return sineOf(angle + 0.5f * kPi);
}

/// Angle of (x, y) from the x-axis towards y, -pi to pi; 0 for the origin.
inline float angleOf(float y, float x) {
    const float ax = std::fabs(x), ay = std::fabs(y), larger = std::max(ax, ay);
    if (larger <= 0.0f) return 0.0f;
    const float t = std::min(ax, ay) / larger, u = t * t;
    float angle =
        t * (0.99997726f + u * (-0.33262347f +
                                u * (0.19354346f + u * (-0.11643287f + u * (0.05265332f - u * 0.0117212f)))));
    if (ay > ax) angle = 0.5f * kPi - angle;
    if (x < 0) angle = kPi - angle;
    return y < 0 ? -angle : angle;
}

/// The bell exp(-((x - cx) / sx)^2 - ((y - cy) / sy)^2).
inline float bell(float x, float cx, float sx) {
    const float u = (x - cx) / sx;
    return expOf(-u * u);
}
inline float bell(float x, float y, float cx, float cy, float sx, float sy) {
    const float u = (x - cx) / sx, v = (y - cy) / sy, q = u * u + v * v;
    return q > 16.0f ? 0.0f : expOf(-q);
}

inline float luminance(Colour c) {
    return 0.2126f * c.x + 0.7152f * c.y + 0.0722f * c.z;
}

/// Linear colour of an sRGB triple in 0..255.
inline Colour fromSrgb(float r, float g, float b) {
    const auto linear = [](float v) {
        v /= 255.0f;
        return v <= 0.04045f ? v / 12.92f : powerOf((v + 0.055f) / 1.055f, 2.4f);
    };
    return {linear(r), linear(g), linear(b)};
}

}  // namespace zel::drawing
