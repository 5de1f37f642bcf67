#include "zellab/imageproc/edgeaware/guidedFilterRows.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

struct Vector {
    float x, y, z;
};

Vector operator*(const Vector& v, float s) {
    return {v.x * s, v.y * s, v.z * s};
}

float dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct Symmetric {
    float rr, rg, rb, gg, gb, bb;
};

Symmetric covariance(NineRows<const float> moments, int x) {
    const float r = moments[0][x], g = moments[1][x], b = moments[2][x];
    return {moments[3][x] - r * r, moments[4][x] - r * g, moments[5][x] - r * b,
            moments[6][x] - g * g, moments[7][x] - g * b, moments[8][x] - b * b};
}

/// The three eigenvalues, limited from below, and whether the first is the one apart from the other two.
/// If not, the third is.
struct Roots {
    float first, second, third;
    bool firstApart;
};

Roots eigenvalues(const RootTables& tables, const Symmetric& c) {
    const float q = (c.rr + c.gg + c.bb) * kThird;
    const float r = c.rr - q, g = c.gg - q, b = c.bb - q;
    const float squares = r * r + g * g + b * b, mixed = c.rg * c.rg + c.rb * c.rb + c.gb * c.gb;
    const float p = std::sqrt((squares + 2.0f * mixed) * kSixth);
    const float determinant =
        r * (g * b - c.gb * c.gb) - c.rg * (c.rg * b - c.gb * c.rb) + c.rb * (c.rg * c.gb - g * c.rb);
    const float d = determinant / (p * p * p);
    float first = p, second = 2.0f * p;  // kept for d = -2, where the cosines would give -2 p
    if (d >= 2.0f) {
        first = 2.0f * p;
        second = -p;
    } else if (!(d <= -2.0f)) {
        // A window of one colour has no d; its p is 0 and any entry serves. Just below 2 the product rounds
        // up.
        const float place = d * 500.0f + 1000.0f;
        const int last = RootTables::kEntries - 1;
        const auto k = static_cast<std::size_t>(place > 0.0f ? std::min(static_cast<int>(place), last) : 0);
        first = 2.0f * p * tables.first[k];
        second = 2.0f * p * tables.second[k];
    }
    return {std::max(q + first, kLeastRoot), std::max(q - first - second, kLeastRoot),
            std::max(q + second, kLeastRoot), d >= 0.0f};
}

/// The longest cross product of two rows of c - e I: it lies along the eigenvector of e.
Vector longestCross(const Symmetric& c, float e) {
    const float r = c.rr - e, g = c.gg - e, b = c.bb - e;
    const float xy = c.rb * c.gb - c.rg * b, xz = c.rg * c.gb - c.rb * g, yz = c.rg * c.rb - r * c.gb;
    const Vector rows[3] = {
        {g * b - c.gb * c.gb, xy, xz}, {xy, r * b - c.rb * c.rb, yz}, {xz, yz, r * g - c.rg * c.rg}};
    Vector longest = rows[0];
    for (int i = 1; i < 3; ++i)
        if (dot(rows[i], rows[i]) > dot(longest, longest)) longest = rows[i];
    return longest;
}

/// v / |v|, or the third axis for a vector without length.
Vector normalised(const Vector& v) {
    const float square = dot(v, v);
    return square > 0.0f ? v * (1.0f / std::sqrt(square)) : Vector{0.0f, 0.0f, 1.0f};
}

/// The unit vector at right angles to `axis` nearest to v; any, if v has no direction of its own.
Vector besides(const Vector& v, const Vector& axis) {
    const float along = dot(v, axis);
    Vector rest = {v.x - axis.x * along, v.y - axis.y * along, v.z - axis.z * along};
    // Across the first axis; where they are the same, normalising takes the third.
    if (!(dot(rest, rest) > dot(v, v) * kNoDirection)) rest = {0.0f, axis.z, -axis.y};
    return normalised(rest);
}

/// One product of the sum over the eigenvectors.
float summed(float g1, float g2, float g3, float p1, float p2, float p3) {
    return g1 * p1 + g2 * p2 + g3 * p3;
}

}  // namespace

RootTables::RootTables() {
    constexpr int kMiddle = kEntries / 2;
    for (int k = 0; k < kEntries; ++k) {
        const float r = static_cast<float>(k - kMiddle) / 500.0f;
        const float angle = std::acos(r / 2.0f) / 3.0f;
        first[static_cast<std::size_t>(k)] = std::cos(angle);
        second[static_cast<std::size_t>(k)] = std::cos(angle + 2.0f * std::numbers::pi_v<float> / 3.0f);
    }
}

GainCurve::GainCurve(float exponentOfVariance, float scale, float factor)
    : exponent(exponentOfVariance), a(std::pow(65025.0f, exponent) * scale), b(a * factor) {}

float GainCurve::power(float variance) const {
    return exponent == 1.0f ? variance : std::pow(variance, exponent);
}

float GainCurve::operator()(float variance) const {
    const float t = power(variance);
    const float gain = (b + t) / (a + t);
    // Scales that make the quotient meaningless leave their direction as it is.
    return std::abs(gain) <= std::numeric_limits<float>::max() ? gain : 1.0f;
}

void coefficientRow(const RootTables& roots, const GainCurve& curve, NineRows<const float> moments,
                    NineRows<float> models, int begin, int end) {
    for (int x = begin; x < end; ++x) {
        const Symmetric c = covariance(moments, x);
        const Roots e = eigenvalues(roots, c);
        // The root apart has the surest vector. The others follow at right angles to it, so that the three
        // directions always make up the whole space, whether or not their roots coincide.
        const float apart = e.firstApart ? e.first : e.third, last = e.firstApart ? e.third : e.first;
        const Vector u = normalised(longestCross(c, apart));
        const Vector v = besides(longestCross(c, e.second), u);
        const Vector w = cross(u, v);
        const float gu = curve(apart), gv = curve(e.second), gw = curve(last);
        const Symmetric a = {summed(gu, gv, gw, u.x * u.x, v.x * v.x, w.x * w.x),
                             summed(gu, gv, gw, u.x * u.y, v.x * v.y, w.x * w.y),
                             summed(gu, gv, gw, u.x * u.z, v.x * v.z, w.x * w.z),
                             summed(gu, gv, gw, u.y * u.y, v.y * v.y, w.y * w.y),
                             summed(gu, gv, gw, u.y * u.z, v.y * v.z, w.y * w.z),
                             summed(gu, gv, gw, u.z * u.z, v.z * v.z, w.z * w.z)};
        const float r = moments[0][x], g = moments[1][x], b = moments[2][x];
        const float model[kCoefficients] = {a.rr,
                                            a.rg,
                                            a.rb,
                                            a.gg,
                                            a.gb,
                                            a.bb,
                                            r - (a.rr * r + a.rg * g + a.rb * b),
                                            g - (a.rg * r + a.gg * g + a.gb * b),
                                            b - (a.rb * r + a.gb * g + a.bb * b)};
        for (std::size_t i = 0; i < kCoefficients; ++i) models[i][x] = model[i];
    }
}

void applyModelRow(NineRows<const float> m, Byte* rgba, int begin, int end) {
    for (int x = begin; x < end; ++x) {
        Byte* const pixel = rgba + std::ptrdiff_t{4} * x;
        const float r = pixel[0], g = pixel[1], b = pixel[2];
        pixel[0] = truncateToByte(m[0][x] * r + m[1][x] * g + m[2][x] * b + m[6][x] + 0.5f);
        pixel[1] = truncateToByte(m[1][x] * r + m[3][x] * g + m[4][x] * b + m[7][x] + 0.5f);
        pixel[2] = truncateToByte(m[2][x] * r + m[4][x] * g + m[5][x] * b + m[8][x] + 0.5f);
        pixel[3] = 255;
    }
}

}  // namespace zellab
