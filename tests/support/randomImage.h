#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <random>
#include <vector>

namespace zeltest {

using Bytes = std::vector<unsigned char>;

/// Uniformly random bytes; the same seed gives the same bytes.
inline Bytes randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (auto& b : bytes) b = static_cast<unsigned char>(random() & 255u);
    return bytes;
}

inline Bytes randomRgba(int width, int height, unsigned seed) {
    return randomBytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, seed);
}

inline Bytes randomPlane(int width, int height, unsigned seed) {
    return randomBytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), seed);
}

/// Smooth shapes with edges and a little noise: closer to a photograph than white noise is, so that
/// thresholds inside an effect are met on both sides.
inline Bytes patternRgba(int width, int height, unsigned seed) {
    Bytes bytes = randomRgba(width, height, seed);
    std::size_t i = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, i += 4) {
            const int wave = (x * 5 + y * 3) % 256, block = ((x / 9 + y / 7) % 2) * 90;
            const int base[3] = {wave, 255 - wave, block + 60};
            for (std::size_t c = 0; c < 3; ++c)
                bytes[i + c] = static_cast<unsigned char>((base[c] * 7 + bytes[i + c]) / 8);
        }
    return bytes;
}

/// A picture whose colours are those that colourAt(x, y) tells, as an array of three numbers each.
template <typename ColourAt>
Bytes drawnRgba(int width, int height, const ColourAt& colourAt, unsigned char alpha = 255) {
    Bytes bytes;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            for (const auto value : colourAt(x, y)) bytes.push_back(static_cast<unsigned char>(value));
            bytes.push_back(alpha);
        }
    return bytes;
}

template <typename ValueAt>
Bytes drawnPlane(int width, int height, const ValueAt& valueAt) {
    Bytes bytes;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) bytes.push_back(static_cast<unsigned char>(valueAt(x, y)));
    return bytes;
}

/// Two pictures that hold every pair of bytes once, in every channel.
inline std::array<Bytes, 2> allPairs() {
    return {drawnRgba(
                256, 256,
                [](int, int y) {
                    return std::array{y, y, y};
                },
                9),
            drawnRgba(
                256, 256,
                [](int x, int) {
                    return std::array{x, x, x};
                },
                8)};
}

/// The picture of a colour cube of 16 steps an axis in which each colour is itself, divided by `divisor`.
inline Bytes cubePicture(int divisor = 1) {
    return drawnRgba(64, 64, [=](int x, int y) {
        const int blue = y / 16 * 4 + x / 16;
        return std::array{x % 16 * 17 / divisor, y % 16 * 17 / divisor, blue * 17 / divisor};
    });
}

/// Largest and mean difference of two pictures' bytes; 256 where they have not one size.
struct Difference {
    int largest = 0;
    double mean = 0;
};
inline Difference differenceOf(const Bytes& a, const Bytes& b) {
    Difference d;
    if (a.size() != b.size() || a.empty()) return {256, 256};
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int apart = std::abs(int{a[i]} - int{b[i]});
        d.largest = std::max(d.largest, apart);
        d.mean += apart;
    }
    d.mean /= static_cast<double>(a.size());
    return d;
}

/// The pixels of a rectangle.
inline Bytes cut(const Bytes& rgba, int width, int left, int top, int across, int down) {
    Bytes part;
    for (int y = top; y < top + down; ++y) {
        const auto row = rgba.begin() + 4 * (y * width + left);
        part.insert(part.end(), row, row + 4 * across);
    }
    return part;
}

}  // namespace zeltest
