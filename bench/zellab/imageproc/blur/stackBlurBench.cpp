// The stack blur beside its peers. A pair of box blurs of size radius + 1 has the very same kernel, without
// the truncation in between. The Gaussian has the window of 2 radius + 1 pixels and the deviation of the
// triangle, whose variance is ((radius + 1)^2 - 1) / 6.
#include "zellab/imageproc/blur/stackBlur.h"

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <string>

#include "benchPicture.h"

namespace {

using zelbench::Size;

struct Setting {
    Size size;
    int radius;
    int threads;
    int channels;
};

Setting settingOf(const benchmark::State& state, int channels) {
    return {zelbench::sizeOf(state.range(1)), static_cast<int>(state.range(0)),
            static_cast<int>(state.range(2)), channels};
}

cv::Mat pictureOf(const Setting& setting, std::vector<unsigned char>& pixels) {
    pixels = zelbench::benchRgba(setting.size);
    return {setting.size.height, setting.size.width, CV_8UC(setting.channels), pixels.data()};
}

void ours(benchmark::State& state, int channels) {
    const Setting setting = settingOf(state, channels);
    const zellab::WorkerCount workers(setting.threads);
    auto pixels = zelbench::benchRgba(setting.size);
    for (auto _ : state) {
        if (channels == 4)
            zellab::StackBlurRGBA({pixels.data(), setting.size.width, setting.size.height}, setting.radius);
        else
            zellab::StackBlurGray({pixels.data(), setting.size.width, setting.size.height}, setting.radius);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, setting.size);
}

void gaussian(benchmark::State& state, int channels) {
    const Setting setting = settingOf(state, channels);
    cv::setNumThreads(setting.threads);
    std::vector<unsigned char> pixels;
    const cv::Mat source = pictureOf(setting, pixels);
    cv::Mat target = source.clone();
    const int reach = setting.radius + 1, window = 2 * setting.radius + 1;
    const double sigma = std::sqrt((reach * reach - 1) / 6.0);
    for (auto _ : state) {
        cv::GaussianBlur(source, target, {window, window}, sigma, sigma, cv::BORDER_REPLICATE);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, setting.size);
}

void boxPair(benchmark::State& state, int channels) {
    const Setting setting = settingOf(state, channels);
    cv::setNumThreads(setting.threads);
    std::vector<unsigned char> pixels;
    const cv::Mat source = pictureOf(setting, pixels);
    cv::Mat between = source.clone(), target = source.clone();
    const int size = setting.radius + 1;
    // An even box leans to one side; the second one leans back.
    const cv::Point first(size / 2, size / 2), second(size - 1 - size / 2, size - 1 - size / 2);
    for (auto _ : state) {
        cv::blur(source, between, {size, size}, first, cv::BORDER_REPLICATE);
        cv::blur(between, target, {size, size}, second, cv::BORDER_REPLICATE);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, setting.size);
}

using Row = void (*)(benchmark::State&, int);

void addRow(const std::string& name, Row row, int channels, const std::vector<std::int64_t>& radii) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { row(state, channels); })
        ->ArgNames({"radius", "MP", "threads"})
        ->ArgsProduct({radii, {zelbench::kMegapixels1, zelbench::kMegapixels12}, {1, 2}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

[[maybe_unused]] const bool kRegistered = [] {
    addRow("stack_blur/ours", ours, 4, {5, 20, 80});
    addRow("stack_blur/opencv_gaussian", gaussian, 4, {5, 20, 80});
    addRow("stack_blur/opencv_box_pair", boxPair, 4, {5, 20, 80});
    addRow("stack_blur_gray/ours", ours, 1, {20});
    addRow("stack_blur_gray/opencv_gaussian", gaussian, 1, {20});
    addRow("stack_blur_gray/opencv_box_pair", boxPair, 1, {20});
    return true;
}();

}  // namespace
