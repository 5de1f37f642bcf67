#pragma once

#include <cmath>
#include <numbers>

#include "reference/slowTone.h"
#include "zel_effects/zel_records.h"

/// The brush and the mesh warp, each cell and each pixel on its own.

namespace slow {

using zellab::Vector2f;

inline std::array<float, 4> cubicWeights(float f) {
    const float t = f + 1.0f, g = 1.0f - f;
    const float w0 = (-6.0f - (0.75f * t - 3.75f) * t) * t + 3.0f;
    const float w1 = (1.25f * f - 2.25f) * (f * f) + 1.0f, w2 = (1.25f * g - 2.25f) * (g * g) + 1.0f;
    return {w0, w1, w2, 1.0f - w0 - w1 - w2};
}

struct Rect {
    int left, top, right, bottom;  // inclusive
};

/// Sums the 4 by 4 taps around (xi, yi), each moved into `window`, with the fractions' weights; rows last.
inline unsigned char bicubicByte(const Bytes& rgba, int width, Rect window, int xi, int yi, float fx,
                                 float fy, int channel) {
    const std::array<float, 4> wx = cubicWeights(fx), wy = cubicWeights(fy);
    float sum = 0.5f;
    for (int j = 0; j < 4; ++j) {
        float row = 0;
        for (int i = 0; i < 4; ++i) {
            const int x = std::clamp(xi - 1 + i, window.left, window.right),
                      y = std::clamp(yi - 1 + j, window.top, window.bottom);
            row += wx[i] * rgba[static_cast<std::size_t>((y * width + x) * 4 + channel)];
        }
        sum += wy[j] * row;
    }
    return toByte(static_cast<int>(sum));
}

/// One stroke of the brush on a picture.
class Liquify {
public:
    Liquify(Bytes& image, int width, int height, int radius, int percent)
        : m_image(image),
          m_before(image),
          m_width(width),
          m_height(height),
          m_radius(radius),
          m_strength(static_cast<float>(percent / 100.0)) {
        for (int i = 0; i < radius; ++i) {
            const double angle =
                std::sqrt(static_cast<double>(static_cast<float>(i) / radius)) * std::numbers::pi;
            m_falloff.push_back(static_cast<float>(std::pow((std::cos(angle) + 1.0) * 0.5, 0.7)));
        }
    }

    void apply(int x1, int y1, int x2, int y2, int mode) {
        const auto inside = [&](int x, int y) { return x >= 0 && x < m_width && y >= 0 && y < m_height; };
        if (m_strength == 0 || m_radius < 1 || !inside(x1, y1) || !inside(x2, y2)) return;
        if (m_strength < 0) mode = 1;
        if (mode != 2) {
            const int reach = 2 * m_radius;
            m_field = m_snapshot = cut({x1 - reach, y1 - reach, x1 + reach, y1 + reach});
            m_mesh.assign(m_image.size() / 4, Vector2f{0, 0});
            step(x1, y1, {0, 0}, mode);
            return;
        }
        const auto dx = static_cast<float>(x1 - x2), dy = static_cast<float>(y1 - y2);
        const int n = 1 - static_cast<int>(std::sqrt(dx * dx + dy * dy) * -2.0f / m_radius);
        const float sx = dx / n, sy = dy / n;
        float px = x2 + sx, py = y2 + sy;
        const auto axis = [&](float start, float s) {
            const int first = static_cast<int>(start), reach = static_cast<int>((n - 1) * std::fabs(s));
            const int low = first - (s >= 0 ? 0 : reach) - m_radius;
            return std::pair(low, low + reach + 2 * m_radius);
        };
        const auto [left, right] = axis(px, sx);
        const auto [top, bottom] = axis(py, sy);
        m_field = cut({left, top, right, bottom});
        m_snapshot = cut({left - 1, top - 1, right + 2, bottom + 2});
        m_mesh.assign(m_image.size() / 4, Vector2f{0, 0});
        for (int i = 0; i < n; ++i, px += sx, py += sy)
            step(static_cast<int>(px), static_cast<int>(py), {-sx, -sy}, mode);
    }

private:
    Rect cut(Rect r) const {
        return {std::max(r.left, 0), std::max(r.top, 0), std::min(r.right, m_width - 1),
                std::min(r.bottom, m_height - 1)};
    }

    /// The field is kept for the whole picture; only its rectangle is read.
    Vector2f& cell(int x, int y) { return m_mesh[static_cast<std::size_t>(y * m_width + x)]; }

    Vector2f change(int dx, int dy, float f, Vector2f v, int mode) const {
        const float s = std::fabs(m_strength), twirl = f * s * 0.5f;
        const auto scale = static_cast<float>(static_cast<double>(f) * 0.1 * s);
        switch (mode) {
            case 0:
                return {-dx * scale, -dy * scale};
            case 1:
                return {dx * scale, dy * scale};
            case 2:
                return {v.x * (f * s), v.y * (f * s)};
            case 4:
                return {-dy * twirl, dx * twirl};
            case 5:
                return {dy * twirl, -dx * twirl};
            default:
                return {0, 0};
        }
    }

    Vector2f fieldAt(float x, float y) {
        const auto limited = [](float v, int size) {
            return v >= static_cast<float>(size - 1) ? static_cast<float>(size - 2) : std::max(v, 0.0f);
        };
        const float mx = limited(x, m_field.right - m_field.left + 1),
                    my = limited(y, m_field.bottom - m_field.top + 1);
        const int ix = static_cast<int>(mx), iy = static_cast<int>(my);
        const float fx = mx - ix, fy = my - iy;
        const auto mix = [&](float Vector2f::*part) {
            const auto at = [&](int i, int j) {
                return cell(m_field.left + ix + i, m_field.top + iy + j).*part;
            };
            return (at(0, 0) * (1.0f - fx) + at(1, 0) * fx) * (1.0f - fy) +
                   (at(0, 1) * (1.0f - fx) + at(1, 1) * fx) * fy;
        };
        return {mix(&Vector2f::x), mix(&Vector2f::y)};
    }

    void step(int px, int py, Vector2f vector, int mode) {
        std::vector<Vector2f> next = m_mesh;
        for (int dy = -std::min(py, m_radius); dy <= m_radius && py + dy < m_height; ++dy)
            for (int dx = -std::min(px, m_radius); dx <= m_radius && px + dx < m_width; ++dx) {
                const int q = (dx * dx + dy * dy) / m_radius, x = px + dx, y = py + dy;
                if (q >= m_radius) continue;
                const float f = m_falloff[static_cast<std::size_t>(q)];
                Vector2f u = cell(x, y);
                if (mode == 3) {
                    const float keep = 1.0f - f * std::fabs(m_strength) * 0.5f;
                    u = {u.x * keep, u.y * keep};
                } else {
                    const Vector2f d = change(dx, dy, f, vector, mode);
                    const Vector2f b = fieldAt(x - m_field.left + d.x, y - m_field.top + d.y);
                    u = {b.x + d.x, b.y + d.y};
                    if (-x > u.x)
                        u.x = -x;
                    else if (u.x + x > m_width - 1)
                        u.x = m_width - x - 1;
                    if (-y > u.y)
                        u.y = -y;
                    else if (u.y + y > m_height - 1)
                        u.y = m_height - y - 1;
                }
                next[static_cast<std::size_t>(y * m_width + x)] = u;
                draw(x, y, x + u.x, y + u.y);
            }
        m_mesh = next;
    }

    void draw(int x, int y, float fx, float fy) {
        const int xi = static_cast<int>(fx), yi = static_cast<int>(fy);
        if (xi < 0 || yi < 0 || xi >= m_width || yi >= m_height) return;
        for (int c = 0; c < 3; ++c)
            m_image[static_cast<std::size_t>((y * m_width + x) * 4 + c)] =
                bicubicByte(m_before, m_width, m_snapshot, xi, yi, fx - xi, fy - yi, c);
    }

    Bytes& m_image;
    const Bytes m_before;
    int m_width, m_height, m_radius;
    float m_strength;
    std::vector<float> m_falloff;
    Rect m_field{}, m_snapshot{};
    std::vector<Vector2f> m_mesh;
};

}  // namespace slow
