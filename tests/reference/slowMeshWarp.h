#pragma once

#include "reference/slowLiquify.h"

/// Deformation of points, and the warp of a picture by triangles.

namespace slow {

using Points = std::vector<Vector2f>;

inline Vector2f weightedCentroid(const Points& controls, const std::vector<float>& weights) {
    float x = 0, y = 0, sum = 0;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        x += weights[i] * controls[i].x;
        y += weights[i] * controls[i].y;
        sum += weights[i];
    }
    return {x / sum, y / sum};
}

/// Where v goes when the controls `from` go to `to`.
inline Vector2f movedPoint(Vector2f v, const Points& from, const Points& to, bool rigid) {
    const auto minus = [](Vector2f a, Vector2f b) { return Vector2f{a.x - b.x, a.y - b.y}; };
    std::vector<float> w;
    for (const Vector2f& p : from) {
        const Vector2f d = minus(p, v);
        const float s = d.x * d.x + d.y * d.y, square = s * s;
        w.push_back(static_cast<float>(1.0 / (static_cast<double>(square) + 1e-8)));
    }
    const Vector2f p0 = weightedCentroid(from, w), q0 = weightedCentroid(to, w), d = minus(v, p0);
    float fx = 0, fy = 0;
    if (rigid) {
        const Vector2f e{d.y, -d.x};
        for (std::size_t i = 0; i < from.size(); ++i) {
            const Vector2f p = minus(from[i], p0), q = minus(to[i], q0);
            const float a0 = (p.x * d.x + p.y * d.y) * w[i], a1 = (p.x * e.x + p.y * e.y) * w[i];
            const float a2 = (p.y * d.x - p.x * d.y) * w[i], a3 = (p.y * e.x - p.x * e.y) * w[i];
            fx += a0 * q.x + a2 * q.y;
            fy += a1 * q.x + a3 * q.y;
        }
        const float length = std::sqrt(d.x * d.x + d.y * d.y) / std::sqrt(fx * fx + fy * fy);
        return {fx * length + q0.x, fy * length + q0.y};
    }
    float m11 = 0, m12 = 0, m22 = 0;
    for (std::size_t i = 0; i < from.size(); ++i) {
        const Vector2f p = minus(from[i], p0);
        m11 += w[i] * (p.x * p.x), m12 += w[i] * (p.x * p.y), m22 += w[i] * (p.y * p.y);
    }
    const float determinant = m11 * m22 - m12 * m12;
    const float i11 = m22 / determinant, i12 = -m12 / determinant, i22 = m11 / determinant;
    const Vector2f u{d.x * i11 + d.y * i12, d.x * i12 + d.y * i22};
    Vector2f moved = q0;
    for (std::size_t i = 0; i < from.size(); ++i) {
        const Vector2f p = minus(from[i], p0), q = minus(to[i], q0);
        const float coefficient = (p.x * u.x + p.y * u.y) * w[i];
        moved.x += coefficient * q.x;
        moved.y += coefficient * q.y;
    }
    return moved;
}

/// The map of three points to three others: elimination on the six unknowns, pivots the largest below.
inline std::array<float, 6> affineMap(const Vector2f* from, const Vector2f* to) {
    double m[6][7] = {};
    for (int i = 0; i < 3; ++i)
        for (int axis = 0; axis < 2; ++axis) {
            double* row = m[2 * i + axis];
            row[3 * axis] = from[i].x, row[3 * axis + 1] = from[i].y, row[3 * axis + 2] = 1.0;
            row[6] = axis == 0 ? to[i].x : to[i].y;
        }
    bool solved = true;
    for (int k = 0; k < 6 && solved; ++k) {
        int pivot = k;
        for (int j = k + 1; j < 6; ++j)
            if (std::fabs(m[j][k]) > std::fabs(m[pivot][k])) pivot = j;
        solved = std::fabs(m[pivot][k]) >= 2.220446049250313e-16;
        if (!solved) break;
        if (pivot != k) std::swap(m[k], m[pivot]);
        const double scale = -1.0 / m[k][k];
        for (int j = k + 1; j < 6; ++j) {
            const double factor = m[j][k] * scale;
            for (int c = k + 1; c < 7; ++c) m[j][c] += factor * m[k][c];
        }
    }
    for (int k = 5; k >= 0 && solved; --k) {
        for (int c = k + 1; c < 6; ++c) m[k][6] -= m[k][c] * m[c][6];
        m[k][6] = m[k][6] / m[k][k];
    }
    std::array<float, 6> map;
    for (int k = 0; k < 6; ++k) map[static_cast<std::size_t>(k)] = static_cast<float>(m[k][6]);
    return map;
}

/// Redraws one triangle of `to` from `source`.
inline void warpTriangle(const Bytes& source, Bytes& target, int width, int height, const Vector2f* from,
                         const Vector2f* to) {
    const auto same = [&](int i) { return from[i].x == to[i].x && from[i].y == to[i].y; };
    if (same(0) && same(1) && same(2)) return;
    const auto visible = [&](const Vector2f& p) {
        return p.x > -0.5f && width > p.x + 0.5f && p.y > -0.5f && height > p.y + 0.5f;
    };
    if (!visible(to[0]) && !visible(to[1]) && !visible(to[2])) return;
    const std::array<float, 6> map = affineMap(to, from);

    const auto cross = [](Vector2f a, Vector2f b, Vector2f c) {
        return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    };
    const auto inside = [&](Vector2f p) {
        for (int i = 0; i < 3; ++i) {
            const Vector2f a = to[i], b = to[(i + 1) % 3], c = to[(i + 2) % 3];
            if (!(cross(a, b, c) * cross(a, b, p) >= 0)) return false;
        }
        return true;
    };
    const auto box = [](float a, float b, float c, int size) {
        const int low = static_cast<int>(std::round(std::min({a, b, c}))),
                  high = static_cast<int>(std::round(std::max({a, b, c})));
        return std::pair(std::clamp(low, 0, size - 1), std::clamp(high, 0, size - 1));
    };
    const auto [left, right] = box(to[0].x, to[1].x, to[2].x, width);
    const auto [top, bottom] = box(to[0].y, to[1].y, to[2].y, height);
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const auto px = static_cast<float>(x), py = static_cast<float>(y);
            if (!inside({px, py})) continue;
            float fx = map[0] * px + map[1] * py + map[2], fy = map[3] * px + map[4] * py + map[5];
            // A near-degenerate triangle has a map that leads beyond what an int holds.
            if (!(fx > -1.0f && fx < static_cast<float>(width))) fx = fx > 0 ? width - 1 : 0;
            if (!(fy > -1.0f && fy < static_cast<float>(height))) fy = fy > 0 ? height - 1 : 0;
            const int xi = static_cast<int>(fx), yi = static_cast<int>(fy);
            for (int c = 0; c < 3; ++c)
                target[static_cast<std::size_t>((y * width + x) * 4 + c)] =
                    bicubicByte(source, width, {0, 0, width - 1, height - 1}, xi, yi, fx - xi, fy - yi, c);
        }
}

}  // namespace slow
