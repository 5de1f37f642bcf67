#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "zellab/imageproc/edgeaware/guidedFilterColor.h"

/// Eye brightening as it is told, one pixel after the other in picture coordinates, for irises that are
/// given.

namespace slow {

struct EyeCircle {
    float x, y, radius;  // radius 0: not found
};

struct EyeSettings {
    float overallGain, bandOffset, highlightGain, whiteGain, darkTolerance, irisGain;  // percentages
    float exponent, scale, factor;
};

/// Everything about one eye; planes have the size of its box.
struct SlowEye {
    std::array<int, 6> upperX, upperY, lowerX, lowerY;
    EyeCircle iris;
    int x0, y0, width = 0, height = 0;
    std::vector<unsigned char> rgba;
    std::vector<float> shape, irisR, eyeR, distance, ex, ey, fx, fy;
    int level = 200, spread = 20;
    float ratio = 1;

    SlowEye(const std::vector<unsigned char>& picture, int w, int h, const float* points, bool left,
            EyeCircle circle)
        : iris(circle) {
        for (int i = 0; i < 6; ++i) {
            const int up = (left ? 0 : 10) + i;
            const int low = i == 0 || i == 5 ? up : (left ? 5 : 15) + i;
            upperX[i] = static_cast<int>(points[2 * up]), upperY[i] = static_cast<int>(points[2 * up + 1]);
            lowerX[i] = static_cast<int>(points[2 * low]), lowerY[i] = static_cast<int>(points[2 * low + 1]);
        }
        x0 = std::max(1, std::min(*std::ranges::min_element(upperX), *std::ranges::min_element(lowerX)));
        y0 = std::max(1, std::min(*std::ranges::min_element(upperY), *std::ranges::min_element(lowerY)));
        const int x1 =
            std::min(w - 1, std::max(*std::ranges::max_element(upperX), *std::ranges::max_element(lowerX)));
        const int y1 =
            std::min(h - 1, std::max(*std::ranges::max_element(upperY), *std::ranges::max_element(lowerY)));
        if (iris.radius == 0 || x1 < x0 || y1 < y0 || x1 - x0 + 1 >= w || y1 - y0 + 1 >= h) return;
        width = x1 - x0 + 1, height = y1 - y0 + 1;
        for (int y = y0; y <= y1; ++y)
            for (int x = x0; x <= x1; ++x)
                for (int c = 0; c < 4; ++c)
                    rgba.push_back(picture[static_cast<std::size_t>((y * w + x) * 4 + c)]);
        for (auto* p : {&shape, &irisR, &eyeR, &distance, &ex, &ey, &fx, &fy})
            p->assign(static_cast<std::size_t>(width * height), 0.0f);
        masks();
        tone();
    }

    void masks() {
        float cx = 0, cy = 0;
        int top = 1 << 30, bottom = -top;
        for (int i = 0; i < 6; ++i) {
            cx += static_cast<float>(upperX[i] + lowerX[i]), cy += static_cast<float>(upperY[i] + lowerY[i]);
            top = std::min({top, upperY[i], lowerY[i]}), bottom = std::max({bottom, upperY[i], lowerY[i]});
        }
        cx /= 12, cy /= 12;
        const float d = std::round(std::hypot(static_cast<float>(width - 1), static_cast<float>(height - 1)));
        for (int y = y0; y < y0 + height; ++y) {
            int from = 1 << 30, to = -from;
            const auto cross = [&](const auto& px, const auto& py) {
                for (int i = 0; i < 5; ++i) {
                    if (y < std::min(py[i], py[i + 1]) || y > std::max(py[i], py[i + 1])) continue;
                    for (int end = 0; end < 2; ++end) {
                        const float t = py[i] == py[i + 1] ? static_cast<float>(end)
                                                           : static_cast<float>(y - py[i]) /
                                                                 static_cast<float>(py[i + 1] - py[i]);
                        const int x = static_cast<int>(std::floor(static_cast<float>(px[i]) +
                                                                  t * static_cast<float>(px[i + 1] - px[i])));
                        from = std::min(from, x), to = std::max(to, x);
                    }
                }
            };
            cross(upperX, upperY), cross(lowerX, lowerY);
            if (from >= to) continue;
            for (int x = std::max(from, x0); x <= std::min(to, x0 + width - 1); ++x) {
                const auto i = static_cast<std::size_t>((y - y0) * width + x - x0);
                const auto fxx = static_cast<float>(x), fyy = static_cast<float>(y);
                ex[i] = 2.0f * (fxx - static_cast<float>(from + to) / 2.0f) / static_cast<float>(to - from);
                ey[i] = 2.0f * (fyy - cy) / static_cast<float>(height);
                fx[i] = 1.0f - ex[i] * ex[i] * (ex[i] * ex[i]),
                fy[i] = 1.0f - ey[i] * ey[i] * (ey[i] * ey[i]);
                shape[i] = std::max(fx[i] * fy[i], 0.0f);
                irisR[i] = ((fxx - iris.x) * (fxx - iris.x) + (fyy - iris.y) * (fyy - iris.y)) /
                           (iris.radius * iris.radius);
                eyeR[i] = ((fxx - cx) * (fxx - cx) + (fyy - cy) * (fyy - cy)) / (d * d / 4.0f);
                const int near = std::min({x - from, to - x, y - top, bottom - y});
                distance[i] = std::min(static_cast<float>(near) / 12.0f, 1.0f);
            }
        }
    }

    void tone() {
        long long outside = 0, sum = 0, squares = 0, inside = 0, sumInside = 0;
        std::vector<int> lightness;
        for (std::size_t i = 0; i < shape.size(); ++i) {
            if (shape[i] < 0.3f) continue;
            const unsigned char* p = &rgba[4 * i];
            const int most = std::max({p[0], p[1], p[2]}), least = std::min({p[0], p[1], p[2]});
            if (irisR[i] >= 0.81f) {
                ++outside, sum += most, squares += most * most;
            } else {
                ++inside, sumInside += most, lightness.push_back((most + least) / 2);
            }
        }
        if (outside > 0) {
            const auto m = static_cast<float>(sum / outside);
            const float s = std::sqrt(static_cast<float>(squares) / static_cast<float>(outside) - m * m);
            level = static_cast<int>(m * 0.8f + 40.0f), spread = static_cast<int>(s * 0.8f + 4.0f);
        }
        double mean = 0, variance = 0;
        for (int l : lightness) mean += l / static_cast<double>(lightness.size());
        for (int l : lightness) variance += (l - mean) * (l - mean) / static_cast<double>(lightness.size());
        if (inside > 0) ratio = static_cast<float>(sumInside) / static_cast<float>(inside * 255);
        const float gain =
            (20.0f * static_cast<float>(variance) / 65025.0f + static_cast<float>(level) / 255.0f) * 0.9f;
        ratio /= std::min(1.0f, gain);
    }
};

/// Textbook conversion back, hue and saturation as shares.
inline void hslToRgb(float h, float s, float l, unsigned char* rgb) {
    const float q = l < 0.5f ? l * (1.0f + s) : l + s - l * s, p = 2.0f * l - q;
    for (int c = 0; c < 3; ++c) {
        float t = h + static_cast<float>(1 - c) / 3.0f;
        t -= std::floor(t);
        const float v = t < 1.0f / 6   ? p + (q - p) * 6.0f * t
                        : t < 0.5f     ? q
                        : t < 2.0f / 3 ? p + (q - p) * (4.0f - 6.0f * t)
                                       : p;
        rgb[c] = static_cast<unsigned char>(std::clamp(v * 255.0f + 0.5f, 0.0f, 255.0f));
    }
}

inline int lightnessOf(const unsigned char* p) {
    return (std::max({p[0], p[1], p[2]}) + std::min({p[0], p[1], p[2]}) + 1) / 2;
}

/// The pixel with another lightness.
inline void relight(unsigned char* p, int lightness) {
    const int r = p[0], g = p[1], b = p[2], mx = std::max({r, g, b}), mn = std::min({r, g, b});
    if (mx == mn) {
        p[0] = p[1] = p[2] = static_cast<unsigned char>(lightness);
        return;
    }
    const int s = (mx - mn) * 255 / (mx + mn < 255 ? mx + mn : 510 - mx - mn);
    const int h = r == mx   ? (g - b) * 42 / (mx - mn)
                  : g == mx ? 85 + (b - r) * 42 / (mx - mn)
                            : (r - g) * 42 / (mx - mn) - 86;
    hslToRgb(static_cast<float>(h) / 256.0f, static_cast<float>(s) / 255.0f,
             static_cast<float>(lightness) / 255.0f, p);
}

/// Steps 7 of one eye whose ratio is settled; `table` is the iris's contrast.
inline void changeEye(SlowEye& eye, const EyeSettings& s, const unsigned char* table) {
    const float offset = s.bandOffset / 100, b0 = std::pow((1 - offset) * 0.1f + offset, 2.0f),
                q = s.irisGain / 100;
    float factor = q / 3;
    if (q > 0) {
        const float k = eye.ratio < 0.4f ? 0.5f / eye.ratio : eye.ratio > 0.48f ? 0.6f / eye.ratio : 1.25f;
        factor = q * std::clamp(k, 1.1f, 3.8f) - q;
    }
    const int sum = eye.level + 2 * eye.spread;
    const float lift = s.highlightGain / 100 / 3 + 0.94f, hA = lift * static_cast<float>(sum) / 255,
                hB = lift * static_cast<float>(eye.level) / 255;
    std::vector<unsigned char> filtered;
    const auto pixels = [&](auto&& work) {
        for (std::size_t i = 0; i < eye.shape.size(); ++i)
            if (eye.shape[i] != 0) work(i, &eye.rgba[4 * i]);
    };
    const auto put = [](unsigned char* p, int c, float v) {
        p[c] = static_cast<unsigned char>(std::clamp(v, 0.0f, 255.0f));
    };
    pixels([&](std::size_t i, unsigned char* p) {
        const float t = (eye.irisR[i] - (b0 + 1) / 2) / (1 - b0);
        if (!(b0 < 1) || t * t >= 0.25f) return;
        const auto l = static_cast<float>(lightnessOf(p));
        const float m = std::min(1.0f, (1 - l / 255) * 1.5f), w = m * m * factor;
        relight(p, static_cast<int>(std::clamp(((1 - 4 * t * t) * w + 1) * l, 0.0f, 255.0f)));
    });
    pixels([&](std::size_t i, unsigned char* p) {
        if (eye.irisR[i] <= 1 || eye.eyeR[i] > 1) return;
        const bool tall = eye.height > eye.width;
        const float a = tall ? eye.fx[i] : eye.fy[i], e = tall ? eye.ey[i] : eye.ex[i];
        const float e8 = e * e * e * e * e * e * e * e;
        float gA = hA, gB = hB, v = (1 - e8 * e8) * a;
        if (e >= 0) gA *= 1 - e8, gB *= 1 - e8, v = eye.shape[i];
        if (eye.irisR[i] < 1.3f) v *= (eye.irisR[i] - 1) * 3.3f;
        const float dark = static_cast<float>(std::max(3 * sum - p[0] - p[1] - p[2], 0)) / 255 /
                           (s.darkTolerance / 100 * 6 + 0.01f);
        const float g = std::max(0.0f, 1 - dark) * v * (s.whiteGain / 100) *
                        std::min(1.0f, 2.0f * static_cast<float>(lightnessOf(p)) / 255);
        const float near[] = {255, 254, 253}, side[] = {240, 220, 210}, corner[] = {120, 50, 30};
        for (int c = 0; c < 3; ++c) {
            float u = (eye.eyeR[i] - 0.7f) / 0.3f, target = gB * (side[c] * (1 - u) + corner[c] * u);
            if (eye.eyeR[i] < 0.7f)
                u = eye.eyeR[i] * 1.42857f, target = near[c] * gA * (1 - u) + side[c] * gB * u;
            if (g != 0) put(p, c, static_cast<float>(p[c]) * (1 - g) + std::min(target, 255.0f) * g);
        }
    });
    for (bool smoothing : {false, true}) {
        if (smoothing) {
            filtered = eye.rgba;
            zellab::GuidedFilterColor().Run({filtered.data(), eye.width, eye.height}, s.exponent, s.scale,
                                            s.factor, 5, false);
        }
        pixels([&](std::size_t i, unsigned char* p) {
            const float w = 1 - eye.irisR[i] * eye.irisR[i];
            for (std::size_t c = 0; c < 3 && eye.irisR[i] < 1; ++c)
                p[c] = static_cast<unsigned char>(
                    static_cast<float>(p[c]) * (1 - w) +
                    static_cast<float>(smoothing ? filtered[4 * i + c] : table[p[c]]) * w);
        });
    }
}

inline void eyeBright(std::vector<unsigned char>& picture, int w, int h, const EyeSettings& s,
                      const float* points, EyeCircle left, EyeCircle right, const unsigned char* table) {
    SlowEye eyes[] = {{picture, w, h, points, true, left}, {picture, w, h, points, false, right}};
    if (eyes[0].width && eyes[1].width && std::abs(eyes[0].ratio - eyes[1].ratio) > 0.1f) {
        const float mid = (eyes[0].ratio + eyes[1].ratio) / 2,
                    by = eyes[0].ratio > eyes[1].ratio ? 0.05f : -0.05f;
        eyes[0].ratio = mid + by, eyes[1].ratio = mid - by;
    }
    for (SlowEye& eye : eyes) {
        if (eye.width == 0) continue;
        changeEye(eye, s, table);
        for (std::size_t i = 0; i < eye.shape.size(); ++i)
            for (std::size_t c = 0; c < 3; ++c) {
                const auto x = static_cast<std::size_t>(eye.x0) + i % static_cast<std::size_t>(eye.width),
                           y = static_cast<std::size_t>(eye.y0) + i / static_cast<std::size_t>(eye.width);
                unsigned char& p = picture[(y * static_cast<std::size_t>(w) + x) * 4 + c];
                const float weight = eye.distance[i] * (s.overallGain / 100);
                p = static_cast<unsigned char>(std::clamp(
                    static_cast<float>(eye.rgba[4 * i + c]) * weight + static_cast<float>(p) * (1 - weight),
                    0.0f, 255.0f));
            }
    }
}

}  // namespace slow
