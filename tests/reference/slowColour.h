#pragma once

#include <cmath>

#include "reference/slowTone.h"

/// Colour conversions, adjustments and lookups, one pixel at a time.

namespace slow {

struct Rgb {
    int r, g, b;
    bool operator==(const Rgb&) const = default;
};
struct YCbCr {
    int y, cb, cr;
    bool operator==(const YCbCr&) const = default;
};

inline YCbCr toYCbCr(Rgb p) {
    constexpr int kHalf = 8192, kMiddle = 128 * 16384 + kHalf;
    return {(4915 * p.r + 9667 * p.g + 1802 * p.b + kHalf) >> 14,
            toByte((-2764 * p.r - 5428 * p.g + 8192 * p.b + kMiddle) >> 14),
            toByte((8192 * p.r - 6860 * p.g - 1332 * p.b + kMiddle) >> 14)};
}

inline Rgb toRgb(YCbCr p) {
    const int y = 16384 * p.y + 8192, u = p.cb - 128, v = p.cr - 128;
    return {toByte((y + 22970 * v) >> 14), toByte((y - 5638 * u - 11700 * v) >> 14),
            toByte((y + 29032 * u) >> 14)};
}

/// The other luma: products and sum in double precision, kept in single.
inline int gray(Rgb p) {
    const auto v = static_cast<float>(p.g * 0.587 + p.r * 0.299 + p.b * 0.114 + 0.5);
    return static_cast<int>(std::clamp(v, 0.0f, 255.0f));
}

/// `steps` cells an axis, laid out as square tiles of `steps` texels; as many tiles along x as along y.
inline void colorCube(Bytes& rgba, const Bytes& cube, int steps) {
    const int tilesPerRow = steps == 16 ? 4 : 8, pictureWidth = tilesPerRow * steps;
    struct Axis {
        int cell, next, fraction;
    };
    const auto position = [&](int byte) {
        const int p = byte * (steps - 1) * 128 / 255, cell = p >> 7;
        return Axis{cell, std::min(cell + 1, steps - 1), p & 127};
    };
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const Axis r = position(rgba[i]), g = position(rgba[i + 1]), b = position(rgba[i + 2]);
        for (int c = 0; c < 3; ++c) {
            const auto texel = [&](int red, int green, int blue) {
                const int x = blue % tilesPerRow * steps + red, y = blue / tilesPerRow * steps + green;
                return static_cast<int>(cube[static_cast<std::size_t>((y * pictureWidth + x) * 4 + c)]);
            };
            const auto alongRed = [&](int green, int blue) {
                const int lower = texel(r.cell, green, blue), upper = texel(r.next, green, blue);
                return (upper - lower) * r.fraction + lower * 128;
            };
            const auto alongGreen = [&](int blue) {
                const int a0 = alongRed(g.cell, blue), a1 = alongRed(g.next, blue);
                return (((a1 - a0) * g.fraction + 64) >> 7) + a0;
            };
            const int c0 = alongGreen(b.cell), c1 = alongGreen(b.next);
            rgba[i + c] = toByte(((c0 + 64) >> 7) + (((c1 - c0) * b.fraction + 128) >> 14));
        }
    }
}

inline void saturationAdjust(Bytes& rgba, int percent) {
    const float k = percent * 0.01f + 1.0f, g = 1.0f - k;
    const int w = static_cast<int>(k * 256.0f);
    const int wr = static_cast<int>(g * 79.0f), wg = static_cast<int>(g * 156.0f),
              wb = static_cast<int>(g * 21.0f);
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const int s = rgba[i] * wr + rgba[i + 1] * wg + rgba[i + 2] * wb;
        for (std::size_t c = 0; c < 3; ++c) rgba[i + c] = toByte((rgba[i + c] * w + s) >> 8);
    }
}

inline void logBrightnessAdjust(Bytes& rgba, int lift) {
    if (lift == 0) return;
    const float t = lift / 10.0f, s = (t >= 0 ? t : t / (1.0f - t)) / 2.5f;
    eachColour(rgba, [&](unsigned char i, std::size_t) {
        const auto logarithm = static_cast<float>(std::log(static_cast<double>(i * s / 255.0f + 1.0f)));
        return toByte(i - static_cast<int>(logarithm * -255.0f / static_cast<float>(std::log(3.0))));
    });
}

}  // namespace slow
