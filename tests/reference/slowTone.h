#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "reference/slowStackBlur.h"

/// Tone curves and the operations made of them, one definition a function. Float steps are single precision
/// unless a type says otherwise; conversions to integers cut toward zero.

namespace slow {

using Table = std::array<unsigned char, 256>;

inline unsigned char toByte(int value) {
    return static_cast<unsigned char>(std::clamp(value, 0, 255));
}

/// Calls change(byte, channel) on bytes 0 to 2 of every pixel.
template <typename Change>
void eachColour(Bytes& rgba, const Change& change) {
    for (std::size_t i = 0; i < rgba.size(); ++i)
        if (i % 4 != 3) rgba[i] = change(rgba[i], i % 4);
}

struct CurvePoint {
    int x, y;
};

/// Control points of the uniform cubic spline through `points`.
inline std::vector<CurvePoint> splineControls(const std::vector<CurvePoint>& points) {
    const int n = static_cast<int>(points.size());
    const auto solve = [&](int CurvePoint::*axis) {
        std::vector<int> b(points.size());
        std::vector<double> d(points.size(), 4.0);
        const auto p = [&](int i) { return points[static_cast<std::size_t>(i)].*axis; };
        for (int i = 0; i < n; ++i) b[i] = 6 * p(i);
        b[0] = p(0), b[n - 1] = p(n - 1);
        if (n == 3) b[1] = (6 * p(1) - p(0) - p(2)) >> 2;
        if (n < 4) return b;
        b[1] -= p(0);
        b[n - 2] -= p(n - 1);
        for (int i = 2; i <= n - 2; ++i) {
            const double l = 1.0 / d[i - 1];
            d[i] -= l;
            b[i] = static_cast<int>(b[i] - b[i - 1] * l);
        }
        b[n - 2] = static_cast<int>(b[n - 2] / d[n - 2]);
        for (int i = n - 3; i >= 1; --i) b[i] = static_cast<int>((b[i] - b[i + 1]) / d[i]);
        return b;
    };
    const std::vector<int> xs = solve(&CurvePoint::x), ys = solve(&CurvePoint::y);
    std::vector<CurvePoint> controls;
    for (std::size_t i = 0; i < points.size(); ++i) controls.push_back({xs[i], ys[i]});
    return controls;
}

inline void curveTable(const std::vector<CurvePoint>& points, Table& table) {
    for (int i = 0; i < 256; ++i) {
        if (i < points.front().x) table[i] = toByte(points.front().y);
        if (i >= points.back().x) table[i] = toByte(points.back().y);
    }
    const std::vector<CurvePoint> b = splineControls(points);
    std::size_t position = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const int y0 = points[i].y, y1 = points[i + 1].y;
        const int c1 = static_cast<int>((2 * b[i].y + b[i + 1].y) / 3.0f);
        const int c2 = static_cast<int>((b[i].y + 2 * b[i + 1].y) / 3.0f);
        const int dx = std::max(std::abs(points[i + 1].x - points[i].x), 1);
        for (int k = 0; k < dx && position < 256; ++k) {
            const float t = static_cast<float>(k) / dx, s = 1.0f - t;
            const auto s3 = static_cast<float>(std::pow(static_cast<double>(s), 3.0));
            const auto t3 = static_cast<float>(std::pow(static_cast<double>(t), 3.0));
            const float value = s3 * y0 + 3.0f * s * s * t * c1 + 3.0f * s * t * t * c2 + t3 * y1;
            table[position++] = toByte(static_cast<int>(value));
        }
    }
}

/// `brightnessRow` and `contrastRow` make a table of a row number.
template <typename Row>
void contrastBrightness(Bytes& rgba, float brightness, float contrast, Row brightnessRow, Row contrastRow) {
    brightness = std::clamp(brightness, -100.0f, 100.0f);
    contrast = std::clamp(contrast, -100.0f, 100.0f);
    const int b = static_cast<int>(brightness * 0.01f * 150.0f + 0.5f);
    const int c = static_cast<int>(contrast < 0 ? contrast * 0.5f + 0.5f : contrast);
    Table table{};
    if (b != 0) {
        table = brightnessRow(b);
        eachColour(rgba, [&](unsigned char v, std::size_t) { return table[v]; });
    }
    if (c != 0) {
        table = contrastRow(c);
        eachColour(rgba, [&](unsigned char v, std::size_t) { return table[v]; });
    }
}

inline void gammaTable(Table& table, float gammaArgument) {
    if (gammaArgument < 0.001f) return;
    const double gamma = gammaArgument, g = 1.0 / gamma, ln2 = std::log(2.0);
    for (int i = 0; i < 256; ++i) table[i] = static_cast<unsigned char>(std::pow(i / 255.0, g) * 255.0 + 0.5);
    if (gamma <= 1.0) return;
    const int n = static_cast<int>(std::exp((gamma / (g - 1.0) + 1.0) * ln2) * 255.0);
    const double v = table[n];
    for (int i = 1; i < n; ++i) {
        const double t = static_cast<double>(i) / n, s = 1.0 - t;
        table[i] = static_cast<unsigned char>(((3.0 - 2.0 * t) * v - v * g * s) * (t * t) +
                                              t * (std::exp(ln2 * gamma) * n) * (s * s) + 0.5);
    }
}

inline Table levels(const std::array<int, 5>& params) {
    const auto [inB, gamma100, inW, outB, outW] = params;
    Table table{};
    const int in = inW - inB, out = outW - outB;
    if (in > 0) {
        const bool linear =
            gamma100 == 100 || static_cast<int>(gamma100 * 0.01f * 100.0f) == 100 || in < 2 || outW == outB;
        if (linear) {
            const int half = out < 0 ? -(in / 2) : in / 2;
            for (int i = inB; i <= inW; ++i)
                table[i] = static_cast<unsigned char>((half + (i - inB) * out) / in + outB);
        } else if (in == 255 && out == 255) {
            gammaTable(table, gamma100 * 0.01f);
        } else {
            Table g{};
            gammaTable(g, gamma100 * 0.01f);
            for (int i = inB; i <= inW; ++i) {
                const int h = in / 2 + 255 * (i - inB);
                const int v = (g[h / in] * out + (out < 0 ? -127 : 127)) / 255 + outB;
                table[i] = static_cast<unsigned char>(std::min(v, 255));
            }
        }
    }
    for (int i = inW; i < 256; ++i) table[i] = 255;
    return table;
}

/// The form on four-byte pixels without a region or a mask.
inline void autoLevels(Bytes& rgba) {
    const int count = static_cast<int>(rgba.size() / 4);
    const int clip = static_cast<int>(count * 0.003f + 0.5f);
    int low = 60, high = 200, lowestLo = 255;
    long long lumaSum = 0;
    for (int c = 0; c < 3; ++c) {
        const auto countWhere = [&](int from, int to) {
            int n = 0;
            for (std::size_t i = c; i < rgba.size(); i += 4) n += rgba[i] >= from && rgba[i] <= to;
            return n;
        };
        int lo = 0, hi = 255;
        while (countWhere(0, lo) <= clip) ++lo;
        while (countWhere(hi, 255) <= clip) --hi;
        low = std::min(low, lo), high = std::max(high, hi), lowestLo = std::min(lowestLo, lo);
    }
    if (low >= high) return;
    Table table{};
    const float f = 255.0f / (high - low);
    float v = f;
    for (int i = 0; i < 256; ++i) {
        table[i] = i >= high ? 255 : i <= low ? 0 : static_cast<unsigned char>(v + 0.4f);
        if (i > low && i < high) v += f;
    }
    // The luma reader takes pixels with blue in byte 0; it is handed red there, as the picture is.
    for (std::size_t i = 0; i < rgba.size(); i += 4)
        lumaSum += (29 * rgba[i] + 150 * rgba[i + 1] + 77 * rgba[i + 2] + 128) >> 8;
    const auto mean = static_cast<unsigned char>(lumaSum / count);
    Table lift{};
    if (mean < 101 && lowestLo > 17) {
        gammaTable(lift, lowestLo >= 38 ? 1.4f : 1.2f);
        for (unsigned char& e : table) e = lift[e];
    }
    eachColour(rgba, [&](unsigned char b, std::size_t) { return table[b]; });
}

/// Mixes toward `curves`, of which `strength` 0.5 takes nothing and both ends take all.
inline void temperatureBlend(Bytes& rgba, float strength, const std::array<Table, 3>& curves) {
    const float d = std::fabs(std::clamp(strength, 0.0f, 1.0f) - 0.5f);
    if (d < 1e-6f) return;
    const float w = 2.0f * d;
    eachColour(rgba, [&](unsigned char i, std::size_t c) {
        return static_cast<unsigned char>(curves[c][i] * w + i * (1.0f - w));
    });
}

inline int toneCurve(int i, int knee) {
    return i <= 128 ? static_cast<int>(std::floor(i * knee / 128.0 + 0.5))
                    : static_cast<int>(std::floor(knee + (i - 128) * (255 - knee) / 127.0 + 0.5));
}

inline void toneTableBlend(Bytes& rgba, float strength) {
    constexpr int kKnees[3] = {103, 138, 153};
    eachColour(rgba, [&](unsigned char i, std::size_t c) {
        return static_cast<unsigned char>(toneCurve(i, kKnees[c]) * strength + i * (1.0f - strength));
    });
}

inline void mixByAlpha(Bytes& result, const Bytes& before, const Bytes& after, float alpha) {
    alpha = std::clamp(alpha, 0.0f, 1.0f);
    for (std::size_t i = 0; i < before.size(); ++i)
        if (i % 4 != 3) result[i] = static_cast<unsigned char>((after[i] - before[i]) * alpha + before[i]);
}

inline void unsharpMask(Bytes& pixels, int width, int height, int rowBytes, int amount, float radius,
                        int threshold) {
    const float a = (amount < 2 ? 1 : std::min(amount, 500)) / 100.0f;
    Bytes blurred = pixels;
    stackBlurEx(blurred, width, height, rowBytes,
                static_cast<int>(std::clamp(radius, 0.1f, 1000.0f) * 2.25f));
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (rowBytes / width != 1 && i % 4 == 3) continue;
        const int r = static_cast<int>((pixels[i] - blurred[i]) * a);
        pixels[i] = toByte(pixels[i] + std::max(r - threshold, 0) - std::max(-(threshold + r), 0));
    }
}

/// What both selective colours do once a pixel is chosen, with weight w and percentages for three channels.
inline void selectiveShift(const unsigned char* pixel, int w, std::array<int, 3> percentages, int* shift) {
    static constexpr int kScale[129] = {
        0,  1,  1,  1,  2,  2,  2,  3,  3,  4,  4,  4,  5,  5,  6,  6,  7,  7,  8,  8,  8,  9,
        9,  10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 16, 16, 17, 17, 18, 18, 19, 19, 20, 21,
        21, 22, 22, 23, 23, 24, 25, 25, 26, 27, 27, 28, 28, 29, 30, 30, 31, 32, 32, 33, 34, 34,
        35, 36, 36, 37, 38, 38, 39, 40, 41, 41, 42, 43, 44, 44, 45, 46, 47, 48, 49, 49, 50, 51,
        52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 69, 70, 71, 72, 73, 75,
        76, 77, 78, 80, 81, 82, 84, 85, 86, 88, 89, 90, 92, 93, 94, 96, 97, 99, 100};
    for (int k = 0; k < 3; ++k) {
        if (percentages[k] == 0) continue;
        const int v = pixel[k];
        const int p = std::min(v <= 128 ? 100 : 100 * v / (256 - v), percentages[k]);
        const int x = (p >= 1 && v < 129 ? v * w : (256 - v) * w) * p;
        if (p >= 1 && v < 128) {
            const int q = std::max(p, kScale[v]) * 256;
            shift[k] += (q / 2 + x) / q;
        } else {
            shift[k] += (x + 12800) / 25600;
        }
    }
}

inline void selectiveReds(const unsigned char* p, int, int mid, int high, int* shift, int c, int m, int y) {
    if (p[0] > p[1] && p[0] > p[2]) selectiveShift(p, high - mid, {c, m, y}, shift);
}

inline void selectiveYellows(const unsigned char* p, int low, int mid, int, int* shift, int c, int m, int y) {
    if (p[2] < p[0] && p[2] < p[1]) selectiveShift(p, mid - low, {c, m, y}, shift);
}

}  // namespace slow
