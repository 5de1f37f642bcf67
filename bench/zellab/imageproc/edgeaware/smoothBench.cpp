// The edge-preserving smoothers beside their peers.
#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc/edge_filter.hpp>

#include "peerThreads.h"
#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/edgeaware/guidedFilterColor.h"
#include "zellab/imageproc/edgeaware/guidedFilterPlane.h"
#include "zellab/imageproc/edgeaware/surfaceBlur.h"

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
            zellab::DomainTransformRGBA({pixels.data(), size.width, size.height}, 16, 50, 3, true);
        else
            zellab::DomainTransformPlane({pixels.data(), size.width, size.height}, 14, 40, 2, true);
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
        zellab::SurfaceBlurFilter().Run({pixels.data(), size.width, size.height}, radius, 10, {});
    });
}

void BM_opencvBilateral(benchmark::State& state, int radius) {
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> rgba = benchRgba(size);
    cv::Mat image, out;
    cv::cvtColor(matOf(rgba, size), image, cv::COLOR_RGBA2RGB);
    run(state, 4, [&](auto&, Size) { cv::bilateralFilter(image, out, 2 * radius + 1, 10, radius); });
}

/// Variance up to which colours count as noise: 1 % of the whole range, squared levels for the peer.
constexpr float kGuidedEpsilon = 0.01f;

void BM_guidedFilter(benchmark::State& state, int radius) {
    const zellab::GuidedFilterColor filter;
    run(state, 4, [&](auto& pixels, Size size) {
        filter.Run({pixels.data(), size.width, size.height}, 1.0f, kGuidedEpsilon, 0.0f, radius, false);
    });
}

/// The peer's guide has three channels; so has what it filters.
void BM_opencvGuidedFilter(benchmark::State& state, int radius) {
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> rgba = benchRgba(size);
    cv::Mat image, out;
    cv::cvtColor(matOf(rgba, size), image, cv::COLOR_RGBA2RGB);
    run(state, 4, [&](auto&, Size) {
        cv::ximgproc::guidedFilter(image, image, out, radius, kGuidedEpsilon * 255.0 * 255.0);
    });
}

void BM_guidedPlane(benchmark::State& state) {
    const std::vector<unsigned char> guide = benchRgba(sizeOf(state.range(0)));
    run(state, 1, [&](auto& plane, Size size) {
        zellab::GuidedFilterPlane({plane.data(), size.width, size.height},
                                  {guide.data(), size.width, size.height}, 2, 0.1f, 4.0f);
    });
}

/// The peer has no fast form: the same reach at full size.
void BM_opencvGuidedPlane(benchmark::State& state) {
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> rgba = benchRgba(size);
    cv::Mat guide, out;
    cv::cvtColor(matOf(rgba, size), guide, cv::COLOR_RGBA2RGB);
    run(state, 1, [&](auto& plane, Size) {
        cv::ximgproc::guidedFilter(guide, matOf(plane, size, 1), out, 8, kGuidedEpsilon * 255.0 * 255.0);
    });
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
    for (int radius : {2, 5, 20}) {
        const std::string group = "guided_filter/radius_" + std::to_string(radius) + "/";
        add(group + "own", BM_guidedFilter, radius);
        add(group + "opencv", BM_opencvGuidedFilter, radius);
    }
    add("guided_plane/own", BM_guidedPlane);
    add("guided_plane/opencv", BM_opencvGuidedPlane);
    return 0;
}
[[maybe_unused]] const int kRegistered = registerAll();

}  // namespace
