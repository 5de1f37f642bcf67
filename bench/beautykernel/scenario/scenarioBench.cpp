#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>
#include <vector>

#include "zellab/imageproc/poisson/poissonEdit.h"
#include "zellab/zelfilteronline/zellabSharp.h"

namespace {

std::vector<unsigned char> picture(int width, int height) {
    std::vector<unsigned char> rgba(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (std::size_t i = 0; i < rgba.size(); ++i)
        rgba[i] = static_cast<unsigned char>((i * 7 + i / 911) % 200);
    return rgba;
}

/// The last two lie on either side of a length with a large prime, 1000 + 1.
void sides(benchmark::internal::Benchmark* row) {
    row->ArgName("side")
        ->Arg(100)
        ->Arg(500)
        ->Arg(981)
        ->Arg(982)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

/// A square of this side is repaired, with ten pixels around it.
void poissonEdit(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0)), size = side + 100;
    std::vector<unsigned char> rgba = picture(size, size);
    std::vector<unsigned char> mask(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
    for (int y = 40; y < 40 + side; ++y)
        std::fill_n(&mask[static_cast<std::size_t>(y) * static_cast<std::size_t>(size) + 40], side,
                    static_cast<unsigned char>(255));
    for (auto _ : state) zellab::PoissonEdit({rgba.data(), size, size}, {mask.data(), size, size}, 1.0f);
}
BENCHMARK(poissonEdit)->Name("poisson_solve/zel")->Apply(sides);

/// The next size whose transform has no prime factor above 7, as the solver pads its box.
int fastSide(int side) {
    for (;; ++side) {
        int rest = side + 1;
        for (int prime : {2, 3, 5, 7})
            while (rest % prime == 0) rest /= prime;
        if (rest == 1) return side;
    }
}

/// The six bare transforms of the same box.
void bareTransforms(benchmark::State& state) {
    const int side = fastSide(static_cast<int>(state.range(0)) + 18);
    std::vector<float> samples(static_cast<std::size_t>(side) * static_cast<std::size_t>(side), 0.5f);
    for (auto _ : state) {
        fftwf_plan plan = fftwf_plan_r2r_2d(side, side, samples.data(), samples.data(), FFTW_RODFT00,
                                            FFTW_RODFT00, FFTW_ESTIMATE);
        for (int i = 0; i < 6; ++i) {
            fftwf_execute(plan);
            const float scale = i % 2 ? 1.0f / (4.0f * static_cast<float>((side + 1) * (side + 1))) : 1.0f;
            for (float& v : samples) v *= scale;
        }
        fftwf_destroy_plan(plan);
    }
}
BENCHMARK(bareTransforms)->Name("poisson_solve/fftw")->Apply(sides);

/// The peer's editor on a square that is as large as the box that the editor solves.
void seamlessClone(benchmark::State& state) {
    cv::setNumThreads(1);
    const int side = static_cast<int>(state.range(0)) + 18, size = side + 100;
    std::vector<unsigned char> rgba = picture(size, size);
    cv::Mat target, out;
    cv::cvtColor(cv::Mat(size, size, CV_8UC4, rgba.data()), target, cv::COLOR_RGBA2RGB);
    cv::Mat mask = cv::Mat::zeros(size, size, CV_8U);
    mask(cv::Rect(50, 50, side, side)) = 255;
    for (auto _ : state)
        cv::seamlessClone(target, target, mask, {50 + side / 2, 50 + side / 2}, out, cv::NORMAL_CLONE);
}
BENCHMARK(seamlessClone)->Name("poisson_solve/opencv_seamless_clone")->Apply(sides);

/// Megapixels.
void sharpener(benchmark::State& state) {
    const int width = static_cast<int>(std::sqrt(static_cast<double>(state.range(0)) * 1e6 * 4 / 3));
    const int height = width * 3 / 4;
    std::vector<unsigned char> rgba = picture(width, height);
    for (auto _ : state) zelfilteronline::CZellabSharp().Run({rgba.data(), width, height}, 0.6f, 0.6f, true);
}
BENCHMARK(sharpener)->Name("sharpener/zel")->Arg(1)->Arg(12)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
