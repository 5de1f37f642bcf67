#pragma once

#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>

#include "benchPicture.h"
#include "frame/processorCount.h"

namespace zelbench {

/// Both sides of a comparison on the same number of threads: the row's second argument.
class SameThreads {
public:
    explicit SameThreads(const benchmark::State& state) : m_count(static_cast<int>(state.range(1))) {
        cv::setNumThreads(static_cast<int>(state.range(1)));
    }

private:
    zellab::WorkerCount m_count;
};

/// The usual arguments: 1 and 12 megapixels, one and two threads.
inline void sizesAndThreads(benchmark::internal::Benchmark* row) {
    row->ArgNames({"MP", "threads"})
        ->ArgsProduct({{kMegapixels1, kMegapixels12}, {1, 2}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

inline cv::Mat matOf(std::vector<unsigned char>& pixels, Size size, int channels = 4) {
    return {size.height, size.width, CV_8UC(channels), pixels.data()};
}

/// The green channel of the usual picture.
inline std::vector<unsigned char> benchPlane(Size size) {
    const std::vector<unsigned char> rgba = benchRgba(size);
    std::vector<unsigned char> plane(rgba.size() / 4);
    for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = rgba[4 * i + 1];
    return plane;
}

}  // namespace zelbench
