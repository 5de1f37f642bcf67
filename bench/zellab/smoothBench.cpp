// The edge-preserving smoothers beside their peers.
#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc/edge_filter.hpp>

#include "peerThreads.h"
#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/surfaceBlur.h"

namespace {

using namespace zelbench;

/// Runs `work(pixels)` on a picture that every iteration finds as it was.
template <typename Work>
void run(benchmark::State& state, int channels, const Work& work) {
    const SameThreads threads(state);
    const Size size = sizeOf(state.range(0));
    const std::vector<unsigned char> source = channels == 4 ? benchRgba(size) : benchPlane(size);
    std::vector<unsigned char> pixels = source;
    for (auto _ : state) {
        state.PauseTiming();
        pixels = source;
        state.ResumeTiming();
        work(pixels, size);
        benchmark::ClobberMemory();
    }
    countPixels(state, size);
}

void BM_domainTransform(benchmark::State& state, int channels) {
    run(state, channels, [=](auto& pixels, Size size) {
        if (channels == 4)
            zellab::DomainTransformRGBA(pixels.data(), size.width, size.height, size.width * 4, 16, 50, 3,
                                        true);
        else
            zellab::DomainTransformPlane(pixels.data(), size.width, size.height, size.width, 14, 40, 2, true);
    });
}

/// The peer takes three channels and no alpha.
void BM_opencvDomainTransform(benchmark::State& state, int channels, int mode) {
    const Size size = sizeOf(state.range(0));
    cv::Mat three;
    if (channels == 4) {
        std::vector<unsigned char> rgba = benchRgba(size);
        cv::cvtColor(matOf(rgba, size), three, cv::COLOR_RGBA2RGB);
    }
    run(state, channels, [&](auto& pixels, Size) {
        cv::Mat image = channels == 4 ? three : matOf(pixels, size, 1), out;
        cv::ximgproc::dtFilter(image, image, out, channels == 4 ? 16 : 14, channels == 4 ? 50 : 40, mode,
                               channels == 4 ? 3 : 2);
    });
}

void BM_surfaceBlur(benchmark::State& state, int radius) {
    run(state, 4, [=](auto& pixels, Size size) {
        zellab::SurfaceBlurFilter().Run(pixels.data(), size.width, size.height, size.width * 4, radius, 10,
                                        nullptr);
    });
}

void BM_opencvBilateral(benchmark::State& state, int radius) {
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> rgba = benchRgba(size);
    cv::Mat image, out;
    cv::cvtColor(matOf(rgba, size), image, cv::COLOR_RGBA2RGB);
    run(state, 4, [&](auto&, Size) { cv::bilateralFilter(image, out, 2 * radius + 1, 10, radius); });
}

int registerAll() {
    const auto add = [](const std::string& name, auto function, auto... arguments) {
        sizesAndThreads(benchmark::RegisterBenchmark(name.c_str(), function, arguments...));
    };
    for (int channels : {4, 1}) {
        const std::string group = std::string("domain_transform_") + (channels == 4 ? "rgba/" : "plane/");
        add(group + "own", BM_domainTransform, channels);
        add(group + "opencv_recursive", BM_opencvDomainTransform, channels, int{cv::ximgproc::DTF_RF});
        add(group + "opencv_normalised", BM_opencvDomainTransform, channels, int{cv::ximgproc::DTF_NC});
    }
    for (int radius : {4, 12, 24}) {
        const std::string group = "surface_blur/radius_" + std::to_string(radius) + "/";
        add(group + "own", BM_surfaceBlur, radius);
        add(group + "opencv_bilateral", BM_opencvBilateral, radius);
    }
    return 0;
}
[[maybe_unused]] const int kRegistered = registerAll();

}  // namespace
