#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "frame/processorCount.h"

namespace zelbench {

/// The two sizes of every row: near the cache's size, and a phone photo. The first argument of a row.
inline constexpr int kMegapixels1 = 1, kMegapixels12 = 12;

struct Size {
    int width, height;
};

inline Size sizeOf(std::int64_t megapixels) {
    return megapixels >= 12 ? Size{4000, 3000} : Size{1152, 864};
}

/// A picture with smooth shapes, edges and noise; the same for every row and every peer.
inline std::vector<unsigned char> benchRgba(Size size) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(size.width) *
                                      static_cast<std::size_t>(size.height) * 4);
    std::uint32_t noise = 1;
    std::size_t i = 0;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < 4; ++c, ++i) {
                noise = noise * 1664525u + 1013904223u;
                const unsigned shape = static_cast<unsigned>((x * (c + 2) / 7 + y / 5) & 255);
                const unsigned block = ((x >> 6) ^ (y >> 6)) & 1 ? 40u : 0u;
                pixels[i] = static_cast<unsigned char>((shape * 3 / 4 + block + (noise >> 28)) & 255u);
            }
    return pixels;
}

/// Counters of a row: pixels a second.
inline void countPixels(benchmark::State& state, Size size) {
    state.counters["MP/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * size.width * size.height / 1e6,
                           benchmark::Counter::kIsRate);
}

}  // namespace zelbench
