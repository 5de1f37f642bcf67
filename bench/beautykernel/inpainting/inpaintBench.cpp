// Filling of square holes beside the peer's, on small and large pictures; the automatic repair of flecks.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>
#include <opencv2/xphoto.hpp>

#include "peerThreads.h"
#include "zel_effects/zel_effects.h"

namespace {

using zelbench::Size;
using ZelImageCore::TableSkin;

constexpr int kLargest = 48;  // megapixels

Size pictureSize(std::int64_t megapixels) {
    return megapixels >= kLargest ? Size{8000, 6000} : zelbench::sizeOf(megapixels);
}

/// A picture with a square hole in its middle.
struct Hole {
    Size size;
    std::vector<unsigned char> rgba, mask;
    Hole(Size pictureSize, int side)
        : size(pictureSize),
          rgba(zelbench::benchRgba(size)),
          mask(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height)) {
        zelbench::matOf(mask, size,
                        1)(cv::Rect((size.width - side) / 2, (size.height - side) / 2, side, side)) = 255;
    }
    cv::Mat rgb() {
        cv::Mat out;
        cv::cvtColor(zelbench::matOf(rgba, size), out, cv::COLOR_RGBA2RGB);
        return out;
    }
};

/// @param method  1 is the gradient engine, 0 the patches
template <int method>
void fill(benchmark::State& state) {
    Hole hole(pictureSize(state.range(1)), static_cast<int>(state.range(0)));
    const std::vector<unsigned char> source = hole.rgba;
    for (auto _ : state) {
        state.PauseTiming();
        hole.rgba = source;
        std::srand(1);
        state.ResumeTiming();
        TableSkin::ImageProcessWithInpaint(hole.rgba.data(), hole.size.width, hole.size.height,
                                           hole.mask.data(), method);
    }
}

template <int method>
void fillByPeer(benchmark::State& state) {
    cv::setNumThreads(1);
    Hole hole(pictureSize(state.range(1)), static_cast<int>(state.range(0)));
    const cv::Mat rgb = hole.rgb(), mask = zelbench::matOf(hole.mask, hole.size, 1);
    cv::Mat out;
    for (auto _ : state) cv::inpaint(rgb, mask, out, 3, method);
}

void holesAndSizes(benchmark::internal::Benchmark* row) {
    row->ArgNames({"hole", "MP"})
        ->ArgsProduct({{40, 400}, {zelbench::kMegapixels1, kLargest}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}
BENCHMARK(fill<1>)->Name("inpaint_gradient/zel")->Apply(holesAndSizes);
BENCHMARK(fillByPeer<cv::INPAINT_TELEA>)->Name("inpaint_gradient/opencv_telea")->Apply(holesAndSizes);
BENCHMARK(fillByPeer<cv::INPAINT_NS>)->Name("inpaint_gradient/opencv_navier_stokes")->Apply(holesAndSizes);
BENCHMARK(fill<0>)->Name("inpaint_patches/zel")->Apply(holesAndSizes);
BENCHMARK(fillByPeer<cv::INPAINT_TELEA>)->Name("inpaint_patches/opencv_telea")->Apply(holesAndSizes);

constexpr Size kSquare{512, 512};

/// The Poisson editor of the peer on the box that the gradient engine solves.
void cloneSameBox(benchmark::State& state) {
    constexpr int kMargin = 10;  // pixels that the engine adds on each side
    cv::setNumThreads(1);
    const int side = static_cast<int>(state.range(0)) + 2 * kMargin;
    Hole hole(kSquare, side);
    const cv::Mat target = hole.rgb(), source = target.clone();
    const cv::Mat mask = zelbench::matOf(hole.mask, hole.size, 1);
    cv::Mat out;
    for (auto _ : state)
        cv::seamlessClone(source, target, mask, {kSquare.width / 2, kSquare.height / 2}, out,
                          cv::NORMAL_CLONE);
}

template <int method>
void fillSquare(benchmark::State& state) {
    Hole hole(kSquare, static_cast<int>(state.range(0)));
    const std::vector<unsigned char> source = hole.rgba;
    for (auto _ : state) {
        state.PauseTiming();
        hole.rgba = source;
        std::srand(1);
        state.ResumeTiming();
        TableSkin::ImageProcessWithInpaint(hole.rgba.data(), kSquare.width, kSquare.height, hole.mask.data(),
                                           method);
    }
}

void shiftMap(benchmark::State& state) {
    cv::setNumThreads(1);
    Hole hole(kSquare, static_cast<int>(state.range(0)));
    cv::Mat out, valid = ~zelbench::matOf(hole.mask, kSquare, 1);  // the peer's mask is 0 in the hole
    const cv::Mat rgb = hole.rgb();
    for (auto _ : state) cv::xphoto::inpaint(rgb, valid, out, cv::xphoto::INPAINT_SHIFTMAP);
}

void holes(benchmark::internal::Benchmark* row) {
    row->ArgName("hole")->Arg(40)->Arg(120)->Arg(400)->Unit(benchmark::kMillisecond)->UseRealTime();
}
void smallHoles(benchmark::internal::Benchmark* row) {
    row->ArgName("hole")->Arg(40)->Arg(120)->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(fillSquare<1>)->Name("inpaint_box/zel")->Apply(holes);
BENCHMARK(cloneSameBox)->Name("inpaint_box/opencv_seamless_clone")->Apply(holes);
BENCHMARK(fillSquare<0>)->Name("inpaint_square/zel")->Apply(smallHoles);
BENCHMARK(shiftMap)->Name("inpaint_square/opencv_shiftmap")->Apply(smallHoles);

}  // namespace
