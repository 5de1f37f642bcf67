// Edges, regions and masks beside their peers.
#include <cstdlib>
#include <cstring>

#include <opencv2/imgproc.hpp>

#include "peerThreads.h"
#include "zellab/imageproc/edges/edgeDetect.h"
#include "zellab/imageproc/masks/floodFill.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace {

using namespace zelbench;

/// A sparse mask of discs, as a blemish finder makes it: about one pixel in forty is set.
std::vector<unsigned char> discMask(Size size) {
    std::vector<unsigned char> mask(static_cast<std::size_t>(size.width) *
                                    static_cast<std::size_t>(size.height));
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const int cell = (x / 24) * 7 + (y / 24) * 13, radius = cell % 11 < 4 ? 3 + cell % 4 : 0;
            const int dx = x % 24 - 12, dy = y % 24 - 12;
            if (dx * dx + dy * dy < radius * radius)
                mask[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) +
                     static_cast<std::size_t>(x)] = 255;
        }
    return mask;
}

/// Runs `work(pixels)` on the given pixels; `restore` puts them back outside the timing where it changes
/// them.
template <typename Work>
void run(benchmark::State& state, const std::vector<unsigned char>& pixels, bool restore, const Work& work) {
    const SameThreads threads(state);
    std::vector<unsigned char> copy = pixels;
    for (auto _ : state) {
        if (restore) {
            state.PauseTiming();
            std::memcpy(copy.data(), pixels.data(), pixels.size());
            state.ResumeTiming();
        }
        work(copy);
        benchmark::ClobberMemory();
    }
    countPixels(state, sizeOf(state.range(0)));
}

void BM_canny(benchmark::State& state, bool opencv) {
    const Size size = sizeOf(state.range(0));
    std::vector<unsigned char> edges(benchPlane(size).size());
    run(state, benchPlane(size), false, [&](auto& plane) {
        if (opencv) {
            cv::Mat out = matOf(edges, size, 1);
            cv::Canny(matOf(plane, size, 1), out, 40, 80, 3, true);
        } else {
            zellab::EdgeDetectCanny({plane.data(), size.width, size.height},
                                    {edges.data(), size.width, size.height}, 5, 10, false);
        }
    });
}

void BM_label(benchmark::State& state, bool opencv) {
    const Size size = sizeOf(state.range(0));
    std::vector<int> labels(discMask(size).size());
    run(state, discMask(size), false, [&](auto& mask) {
        if (opencv) {
            cv::Mat out(size.height, size.width, CV_32S, labels.data()), boxes, centroids;
            cv::connectedComponentsWithStats(matOf(mask, size, 1), out, boxes, centroids);
        } else {
            zellab::LabelConnectedRuns({mask.data(), size.width, size.height},
                                       {labels.data(), size.width, size.height});
        }
    });
}

void BM_fill(benchmark::State& state, bool opencv) {
    const Size size = sizeOf(state.range(0));
    run(state, discMask(size), true, [&](auto& mask) {
        if (opencv) {
            cv::Mat image = matOf(mask, size, 1);
            cv::floodFill(image, cv::Point(0, 0), cv::Scalar(255));
        } else {
            zellab::ScanlineFloodFill({mask.data(), size.width, size.height}, 0, 0);
        }
    });
}

void BM_dilate(benchmark::State& state, int radius, bool opencv) {
    const Size size = sizeOf(state.range(0));
    const cv::Mat window(2 * radius + 1, 2 * radius + 1, CV_8U, cv::Scalar(1));
    run(state, discMask(size), true, [&](auto& mask) {
        if (opencv) {
            cv::Mat image = matOf(mask, size, 1);
            cv::dilate(image, image, window);
        } else {
            zellab::BoxMorphology({mask.data(), size.width, size.height}, radius, true);
        }
    });
}

/// No peer in the small packages: it stands beside the memcpy row.
void BM_thin(benchmark::State& state) {
    const Size size = sizeOf(state.range(0));
    run(state, discMask(size), true, [&](auto& mask) {
        zellab::ThinMask({mask.data(), size.width, size.height});
    });
}

int registerAll() {
    const auto add = [](const char* name, auto function, auto... arguments) {
        sizesAndThreads(benchmark::RegisterBenchmark(name, function, arguments...));
    };
    add("canny/own", BM_canny, false);
    add("canny/opencv", BM_canny, true);
    add("label/own", BM_label, false);
    add("label/opencv", BM_label, true);
    add("flood_fill/own", BM_fill, false);
    add("flood_fill/opencv", BM_fill, true);
    add("dilate/radius_1/own", BM_dilate, 1, false);
    add("dilate/radius_1/opencv", BM_dilate, 1, true);
    add("dilate/radius_12/own", BM_dilate, 12, false);
    add("dilate/radius_12/opencv", BM_dilate, 12, true);
    add("thin_mask/own", BM_thin);
    return 0;
}
[[maybe_unused]] const int kRegistered = registerAll();

}  // namespace
