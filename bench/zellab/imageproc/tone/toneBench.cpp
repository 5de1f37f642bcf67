// Point operations beside their peers: OpenCV's LUT with a table a channel, addWeighted, and libyuv's blend.
#include <libyuv.h>

#include <array>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>

#include "benchPicture.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/colour/colorAdjust.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/imageproc/sharpen/unsharpMaskKernel.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/psContrastBrightness.h"
#include "zellab/imageproc/tone/toneBlend.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace {

using zelbench::Size;
using Pixels = std::vector<unsigned char>;

/// What a row works on: a picture to change and a second one of the same size.
struct Job {
    Size size;
    Pixels pixels, other;

    cv::Mat mat() { return {size.height, size.width, CV_8UC4, pixels.data()}; }
    cv::Mat otherMat() { return {size.height, size.width, CV_8UC4, other.data()}; }
};

using Step = void (*)(Job&);

void run(benchmark::State& state, Step step) {
    const Size size = zelbench::sizeOf(state.range(0));
    const auto threads = static_cast<int>(state.range(1));
    const zellab::WorkerCount workers(threads);
    cv::setNumThreads(threads);
    Job job{size, zelbench::benchRgba(size), {}};
    job.other.assign(job.pixels.rbegin(), job.pixels.rend());
    for (auto _ : state) {
        step(job);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}

void addRow(const std::string& name, Step step, const std::vector<std::int64_t>& threads = {1, 2}) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { run(state, step); })
        ->ArgNames({"MP", "threads"})
        ->ArgsProduct({{zelbench::kMegapixels1, zelbench::kMegapixels12}, threads})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

using Table = std::array<unsigned char, 256>;

/// Tables that keep the picture busy however often it passes through: a permutation of the values.
Table shuffledTable(int step) {
    Table table;
    for (std::size_t i = 0; i < 256; ++i)
        table[i] = static_cast<unsigned char>(i * static_cast<unsigned>(step));
    return table;
}

void mapThree(Job& job) {
    static const Table r = shuffledTable(3), g = shuffledTable(5), b = shuffledTable(7);
    zellab::mapPixels({job.pixels.data(), job.size.width, job.size.height}, zellab::ChannelTables{r, g, b});
}

void mapOpenCv(Job& job) {
    static const cv::Mat tables = [] {
        cv::Mat all(1, 256, CV_8UC4);
        for (int i = 0; i < 256; ++i)
            all.at<cv::Vec4b>(i) = {static_cast<unsigned char>(i * 3), static_cast<unsigned char>(i * 5),
                                    static_cast<unsigned char>(i * 7), static_cast<unsigned char>(i)};
        return all;
    }();
    cv::LUT(job.mat(), tables, job.mat());
}

void contrastBrightness(Job& job) {
    zellab::PSContrastBrightness().Run({job.pixels.data(), job.size.width, job.size.height}, 20, -20);
}

void temperature(Job& job) {
    zellab::ColorTemperatureBlend({job.pixels.data(), job.size.width, job.size.height}, 0.6f, 0);
}

void autoLevels(Job& job) {
    zellab::AutoLevels(zellab::ImageView(job.pixels.data(), job.size.width, job.size.height));
}

void mix(Job& job) {
    zellab::MixByAlpha({job.pixels.data(), job.size.width, job.size.height},
                       {job.other.data(), job.size.width, job.size.height},
                       {job.pixels.data(), job.size.width, job.size.height}, 0.3f);
}

void mixOpenCv(Job& job) {
    const cv::Mat target = job.mat();
    cv::addWeighted(job.otherMat(), 0.7, target, 0.3, 0, target);
}

void mixLibyuv(Job& job) {
    const int stride = 4 * job.size.width;
    libyuv::ARGBInterpolate(job.other.data(), stride, job.pixels.data(), stride, job.pixels.data(), stride,
                            job.size.width, job.size.height, 77);
}

void sharpen(Job& job) {
    zellab::UnsharpMaskKernel(1.1f, 0.8f)
        .Run({job.pixels.data(), job.size.width, job.size.height},
             {job.other.data(), job.size.width, job.size.height});
}

void sharpenOpenCv(Job& job) {
    const cv::Mat target = job.mat();
    cv::addWeighted(target, 1.8, job.otherMat(), -0.8, 0, target);
}

void unsharpMask(Job& job) {
    zellab::UnsharpMask(zellab::ImageView(job.pixels.data(), job.size.width, job.size.height), 50, 4, 0);
}

void saturation(Job& job) {
    zellab::SaturationAdjust({job.pixels.data(), job.size.width, job.size.height}, 20);
}

void saturationOpenCv(Job& job) {
    const float g = -0.2f, r = g * 79 / 256, m = g * 156 / 256, b = g * 21 / 256;
    static const cv::Mat matrix =
        (cv::Mat_<float>(4, 4) << r + 1.2f, m, b, 0, r, m + 1.2f, b, 0, r, m, b + 1.2f, 0, 0, 0, 0, 1);
    cv::transform(job.mat(), job.mat(), matrix);
}

void saturationLibyuv(Job& job) {
    static const std::int8_t matrix[16] = {72, -8, -1, 0, -4, 69, -1, 0, -4, -8, 76, 0, 0, 0, 0, 64};
    const int stride = 4 * job.size.width;
    libyuv::ARGBColorMatrix(job.pixels.data(), stride, job.pixels.data(), stride, matrix, job.size.width,
                            job.size.height);
}

void mosaic(Job& job) {
    ZelImageCore::TableBase::ImageProcessWithMosaic(job.pixels.data(), job.size.width, job.size.height, 16);
}

void mosaicOpenCv(Job& job) {
    cv::Mat small;
    cv::resize(job.mat(), small, {job.size.width / 16, job.size.height / 16}, 0, 0, cv::INTER_AREA);
    cv::resize(small, job.mat(), {job.size.width, job.size.height}, 0, 0, cv::INTER_NEAREST);
}

void alphaMix(Job& job) {
    static Pixels mask;
    if (mask.size() != job.pixels.size()) mask.assign(job.pixels.size(), 90);
    float params[6] = {0, 0, static_cast<float>(job.size.width), static_cast<float>(job.size.height), 0, 1};
    ZelImageCore::TableBase::ImageProcessWithAlphaMix(job.pixels.data(), job.size.width, job.size.height,
                                                      job.other.data(), mask.data(), params);
}

[[maybe_unused]] const bool kRegistered = [] {
    addRow("tone_table/ours", mapThree);
    addRow("tone_table/opencv_lut", mapOpenCv);
    addRow("contrast_brightness/ours", contrastBrightness);
    addRow("color_temperature/ours", temperature);
    addRow("auto_levels/ours", autoLevels);
    addRow("mix_by_alpha/ours", mix);
    addRow("mix_by_alpha/opencv_add_weighted", mixOpenCv);
    addRow("mix_by_alpha/libyuv_interpolate", mixLibyuv, {1});
    addRow("sharpen/ours", sharpen);
    addRow("sharpen/opencv_add_weighted", sharpenOpenCv);
    addRow("unsharp_mask/ours", unsharpMask);
    addRow("saturation/ours", saturation);
    addRow("saturation/opencv_transform", saturationOpenCv);
    addRow("saturation/libyuv_color_matrix", saturationLibyuv, {1});
    addRow("mosaic/ours", mosaic);
    addRow("mosaic/opencv_area_nearest", mosaicOpenCv);
    addRow("alpha_mix/ours", alphaMix);
    return true;
}();

}  // namespace
