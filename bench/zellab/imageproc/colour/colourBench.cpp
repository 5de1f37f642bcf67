// Colour conversion beside OpenCV and libyuv, and the colour cube beside a plain floating-point lookup.
#include <libyuv.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>

#include "benchPicture.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/colour/yCbCr.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace {

using zelbench::Size;
using Pixels = std::vector<unsigned char>;

struct Job {
    Size size;
    Pixels pixels;
    Pixels planes;  // three, one behind the other
    Pixels cube;    // 64 by 64 texels

    zellab::ImageView view() { return {pixels.data(), size.width, size.height}; }
    unsigned char* plane(int k) {
        return planes.data() + static_cast<std::ptrdiff_t>(k) * size.width * size.height;
    }
    zellab::PlaneView<unsigned char> planeView(int k) { return {plane(k), size.width, size.height}; }
    cv::Mat mat() { return {size.height, size.width, CV_8UC4, pixels.data()}; }
};

using Step = void (*)(Job&);

void run(benchmark::State& state, Step step) {
    const Size size = zelbench::sizeOf(state.range(0));
    const auto threads = static_cast<int>(state.range(1));
    const zellab::WorkerCount workers(threads);
    cv::setNumThreads(threads);
    Job job{size, zelbench::benchRgba(size), {}, Pixels(std::size_t{64} * 64 * 4)};
    job.planes.resize(job.pixels.size());
    for (std::size_t i = 0; i < job.cube.size(); ++i) job.cube[i] = static_cast<unsigned char>(i * 97 >> 3);
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

void yCbCr(Job& job) {
    zellab::RGBAToYCbCrPlanes(job.view(), job.planeView(0), job.planeView(1), job.planeView(2));
}

void yCbCrOpenCv(Job& job) {
    cv::Mat packed(job.size.height, job.size.width, CV_8UC3, job.planes.data());
    cv::cvtColor(job.mat(), packed, cv::COLOR_RGB2YCrCb);
}

void yCbCrLibyuv(Job& job) {
    const int w = job.size.width;
    libyuv::ARGBToI444(job.pixels.data(), 4 * w, job.plane(0), w, job.plane(1), w, job.plane(2), w, w,
                       job.size.height);
}

void gray(Job& job) {
    zellab::RGBAToGray(job.view(), job.planeView(0));
}

void grayOpenCv(Job& job) {
    cv::Mat plane(job.size.height, job.size.width, CV_8UC1, job.planes.data());
    cv::cvtColor(job.mat(), plane, cv::COLOR_RGBA2GRAY);
}

void grayLibyuv(Job& job) {
    libyuv::ARGBToJ400(job.pixels.data(), 4 * job.size.width, job.plane(0), job.size.width, job.size.width,
                       job.size.height);
}

void cube(Job& job) {
    zellab::ApplyColorCube(job.view(), job.cube.data());
}

/// One pixel of the plain lookup: eight corners, three directions, in floating point.
void plainPixel(unsigned char* pixel, const float* cube) {
    int cell[3], next[3];
    float share[3];
    for (int c = 0; c < 3; ++c) {
        const float position = static_cast<float>(pixel[c]) * (15.0f / 255.0f);
        cell[c] = static_cast<int>(position);
        next[c] = std::min(cell[c] + 1, 15);
        share[c] = position - static_cast<float>(cell[c]);
    }
    const auto at = [cube](int r, int g, int b) { return cube + 3 * ((b * 16 + g) * 16 + r); };
    for (int c = 0; c < 3; ++c) {
        float value = 0;
        for (int k = 0; k < 8; ++k) {
            const float weight = (k & 1 ? share[0] : 1 - share[0]) * (k & 2 ? share[1] : 1 - share[1]) *
                                 (k & 4 ? share[2] : 1 - share[2]);
            value += weight *
                     at(k & 1 ? next[0] : cell[0], k & 2 ? next[1] : cell[1], k & 4 ? next[2] : cell[2])[c];
        }
        pixel[c] = static_cast<unsigned char>(value + 0.5f);
    }
}

void cubePlain(Job& job) {
    std::vector<float> texels;
    for (std::size_t i = 0; i < std::size_t{4096} * 3; ++i) texels.push_back(job.cube[i]);
    zellab::parallelRows(job.size.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < job.size.width; ++x)
                plainPixel(job.pixels.data() + (static_cast<std::ptrdiff_t>(y) * job.size.width + x) * 4,
                           texels.data());
    });
}

[[maybe_unused]] const bool kRegistered = [] {
    addRow("ycbcr_planes/ours", yCbCr);
    addRow("ycbcr_planes/opencv_packed", yCbCrOpenCv);
    addRow("ycbcr_planes/libyuv_i444", yCbCrLibyuv, {1});
    addRow("gray/ours", gray);
    addRow("gray/opencv", grayOpenCv);
    addRow("gray/libyuv_j400", grayLibyuv, {1});
    addRow("color_cube/ours", cube);
    addRow("color_cube/plain_float", cubePlain);
    return true;
}();

}  // namespace
