// The scalers and the recursive Gaussian beside their peers. Pixels are counted in the larger picture.
#include <opencv2/imgproc.hpp>

#include "peerThreads.h"
#include "zellab/imageproc/blur/recursiveGaussian.h"
#include "zellab/imageproc/resample/imageResampler.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace {

using namespace zelbench;

/// The whole picture and 0.6 of it, one of them the source.
struct Pair {
    Size from, to;

    Pair(const benchmark::State& state, bool enlarge) {
        const Size whole = sizeOf(state.range(0)), part{whole.width * 6 / 10, whole.height * 6 / 10};
        from = enlarge ? part : whole;
        to = enlarge ? whole : part;
    }
};

template <typename Scale>
void runScale(benchmark::State& state, bool enlarge, int channels, const Scale& scale) {
    const SameThreads threads(state);
    const Pair sizes(state, enlarge);
    std::vector<unsigned char> source = channels == 4 ? benchRgba(sizes.from) : benchPlane(sizes.from);
    std::vector<unsigned char> target(static_cast<std::size_t>(sizes.to.width) *
                                      static_cast<std::size_t>(sizes.to.height) *
                                      static_cast<std::size_t>(channels));
    for (auto _ : state) {
        scale(source, sizes.from, target, sizes.to);
        benchmark::ClobberMemory();
    }
    countPixels(state, sizeOf(state.range(0)));
}

void BM_resampler(benchmark::State& state, int quality, bool enlarge, int channels) {
    runScale(state, enlarge, channels, [=](auto& source, Size from, auto& target, Size to) {
        if (channels == 4)
            zellab::ImageResampler().Resize(zellab::ConstImageView(source.data(), from.width, from.height),
                                            zellab::ImageView(target.data(), to.width, to.height), quality);
        else
            zellab::ImageResampler().Resize(
                zellab::PlaneView<const unsigned char>(source.data(), from.width, from.height),
                zellab::PlaneView<unsigned char>(target.data(), to.width, to.height), quality);
    });
}

void BM_bilinear(benchmark::State& state, bool enlarge, int channels) {
    runScale(state, enlarge, channels, [=](auto& source, Size from, auto& target, Size to) {
        if (channels == 4)
            zellab::ScaleBilinearThreaded(zellab::ConstImageView(source.data(), from.width, from.height),
                                          zellab::ImageView(target.data(), to.width, to.height));
        else
            zellab::ScaleBilinearThreaded(
                zellab::PlaneView<const unsigned char>(source.data(), from.width, from.height),
                zellab::PlaneView<unsigned char>(target.data(), to.width, to.height));
    });
}

void BM_opencv(benchmark::State& state, int interpolation, bool enlarge, int channels) {
    runScale(state, enlarge, channels, [=](auto& source, Size from, auto& target, Size to) {
        cv::Mat out = matOf(target, to, channels);
        cv::resize(matOf(source, from, channels), out, out.size(), 0, 0, interpolation);
    });
}

void BM_yuv(benchmark::State& state, zellab::YuvFilter filter, bool enlarge, int channels) {
    runScale(state, enlarge, channels, [=](auto& source, Size from, auto& target, Size to) {
        if (channels == 4)
            zellab::scaleArgb({source.data(), from.width, from.height}, {target.data(), to.width, to.height},
                              filter);
        else
            zellab::scalePlane({source.data(), from.width, from.height}, {target.data(), to.width, to.height},
                               filter);
    });
}

void BM_recursiveGaussian(benchmark::State& state, float sigma, int channels) {
    const SameThreads threads(state);
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> pixels = channels == 4 ? benchRgba(size) : benchPlane(size);
    for (auto _ : state) {
        if (channels == 4)
            zellab::RecursiveGaussianBlur(zellab::ImageView(pixels.data(), size.width, size.height), sigma,
                                          sigma);
        else
            zellab::RecursiveGaussianBlur(
                zellab::PlaneView<unsigned char>(pixels.data(), size.width, size.height), sigma, sigma);
        benchmark::ClobberMemory();
    }
    countPixels(state, size);
}

void BM_opencvGaussian(benchmark::State& state, double sigma, int channels) {
    const SameThreads threads(state);
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> pixels = channels == 4 ? benchRgba(size) : benchPlane(size);
    cv::Mat image = matOf(pixels, size, channels);
    for (auto _ : state) {
        cv::GaussianBlur(image, image, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
        benchmark::ClobberMemory();
    }
    countPixels(state, size);
}

int registerAll() {
    const auto add = [](const std::string& name, auto function, auto... arguments) {
        sizesAndThreads(benchmark::RegisterBenchmark(name.c_str(), function, arguments...));
    };
    for (bool enlarge : {false, true})
        for (int channels : {4, 1}) {
            const std::string group =
                std::string("scale_") + (enlarge ? "up_" : "down_") + (channels == 4 ? "rgba/" : "plane/");
            add(group + "two_tap/resampler", BM_resampler, 0, enlarge, channels);
            add(group + "two_tap/bilinear", BM_bilinear, enlarge, channels);
            add(group + "two_tap/opencv_linear", BM_opencv, int{cv::INTER_LINEAR}, enlarge, channels);
            add(group + "two_tap/yuv_bilinear", BM_yuv, zellab::YuvFilter::bilinear, enlarge, channels);
            add(group + "long/resampler_3", BM_resampler, 3, enlarge, channels);
            add(group + "long/resampler_2", BM_resampler, 2, enlarge, channels);
            add(group + "long/opencv_cubic", BM_opencv, int{cv::INTER_CUBIC}, enlarge, channels);
            add(group + "long/opencv_lanczos", BM_opencv, int{cv::INTER_LANCZOS4}, enlarge, channels);
            if (!enlarge) add(group + "long/opencv_area", BM_opencv, int{cv::INTER_AREA}, enlarge, channels);
        }
    for (int channels : {4, 1}) {
        const std::string group = std::string("recursive_gaussian_") + (channels == 4 ? "rgba/" : "plane/");
        add(group + "sigma_1.5/own", BM_recursiveGaussian, 1.5f, channels);
        add(group + "sigma_1.5/opencv", BM_opencvGaussian, 1.5, channels);
        add(group + "sigma_8/own", BM_recursiveGaussian, 8.0f, channels);
        add(group + "sigma_8/opencv", BM_opencvGaussian, 8.0, channels);
    }
    return 0;
}
[[maybe_unused]] const int kRegistered = registerAll();

}  // namespace
