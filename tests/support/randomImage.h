#pragma once

#include <cstddef>
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

}  // namespace zeltest
