#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <string>
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

/// Bench pictures in skin's colours: less contrast, red above green above blue.
inline std::vector<unsigned char> skinRgba(Size size) {
    std::vector<unsigned char> rgba = benchRgba(size);
    constexpr int kBase[4] = {160, 120, 100, 255};
    for (std::size_t i = 0; i < rgba.size(); ++i)
        rgba[i] = static_cast<unsigned char>(i % 4 == 3 ? 255 : kBase[i % 4] + rgba[i] / 4);
    return rgba;
}

/// Counters of a row: pixels a second.
inline void countPixels(benchmark::State& state, Size size) {
    state.counters["MP/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * size.width * size.height / 1e6,
                           benchmark::Counter::kIsRate);
}

/// A plain copy of the picture: the floor under the rows on the same pixels.
inline void copyPicture(benchmark::State& state, Size size, const std::vector<unsigned char>& source) {
    auto target = source;
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::ClobberMemory();
    }
    countPixels(state, size);
}

/// Calls operation(pixels) on a picture that is made anew for each turn, outside the timing: effects would
/// soon have burnt it.
template <typename Operation>
void runOnFreshPicture(benchmark::State& state, Size size, const std::vector<unsigned char>& source,
                       const Operation& operation) {
    auto image = source;
    for (auto _ : state) {
        state.PauseTiming();
        image = source;
        state.ResumeTiming();
        operation(image.data());
        benchmark::ClobberMemory();
    }
    countPixels(state, size);
}

/// A row in milliseconds of wall-clock time at both sizes, on each number of threads.
template <typename Row>
void addSizedRow(const std::string& name, const Row& row, const std::vector<std::int64_t>& threads) {
    benchmark::RegisterBenchmark(name.c_str(), row)
        ->ArgNames({"MP", "threads"})
        ->ArgsProduct({{kMegapixels1, kMegapixels12}, threads})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

}  // namespace zelbench
