#include "zellab/imageproc/blur/stackBlur.h"

#include <algorithm>
#include <cstring>

#include "frame/processorCount.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"

namespace zellab {

namespace {

/// Pictures of fewer pixels stay on the caller's thread.
constexpr std::size_t kFewestPixelsForWorkers = 12101, kFewestGrayForWorkers = 36101;

int workersFor(int width, int height, std::size_t fewestPixels) {
    return sampleCount(width, height) < fewestPixels ? 1 : ProcessorCount();
}

/// The picture as what a blur reads: all its bytes, or byte 0 of each pixel.
BlurSource sourceOf(ImageView image, int channels, bool keepsAlpha) {
    return {image.data, image.width, image.height, image.stride, ImageView::kChannels, channels, keepsAlpha};
}

void blurPixels(ImageView image, int radius, int workers, bool keepsAlpha) {
    if (!image.valid() || radius < 0) return;
    stackBlur(sourceOf(image, ImageView::kChannels, keepsAlpha), radius, workers,
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  std::memcpy(image.row(y) + first, blurred, static_cast<std::size_t>(count));
              });
}

}  // namespace

int stackBlurRadius(int width, int height, int radius) {
    const int half = std::min(width, height) / 2;
    return radius > half / 2 ? (half - 1) / 2 : radius;
}

int stackBlurWorkers(int width, int height) {
    return workersFor(width, height, kFewestPixelsForWorkers);
}

void CStackBlur::StackBlurExOptimized(ImageView image, int radius, int threads) {
    blurPixels(image, radius, threads, true);
}

void CStackBlur::StackBlurExGray(PlaneView<Byte> plane, int radius, int threads) {
    if (!plane.valid() || radius < 0) return;
    const BlurSource source{plane.data, plane.width, plane.height, plane.stride, 1, 1, false};
    stackBlur(source, radius, threads,
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  std::memcpy(plane.row(y) + first, blurred, static_cast<std::size_t>(count));
              });
}

void CStackBlur::StackBlurEx(ImageView image, int radius) {
    const int limited = stackBlurRadius(image.width, image.height, radius);
    if (limited > 0) StackBlurExOptimized(image, limited, stackBlurWorkers(image.width, image.height));
}

void CStackBlur::StackBlurEx(PlaneView<Byte> plane, int radius) {
    const int limited = stackBlurRadius(plane.width, plane.height, radius);
    if (limited > 0)
        StackBlurExGray(plane, limited, workersFor(plane.width, plane.height, kFewestGrayForWorkers));
}

void StackBlurRGBA(ImageView image, int radius) {
    CStackBlur::StackBlurEx(image, radius);
}

void StackBlurGray(PlaneView<Byte> plane, int radius) {
    CStackBlur::StackBlurEx(plane, radius);
}

void StackBlurAllChannels(ImageView image, int radius) {
    blurPixels(image, radius, stackBlurWorkers(image.width, image.height), false);
}

void MaskStackBlur(ImageView image, int radius) {
    if (!image.valid() || radius < 0) return;
    stackBlur(sourceOf(image, 1, false), radius, 1,
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  Byte* pixel = image.row(y) + 4 * first;
                  for (std::ptrdiff_t i = 0; i < count; ++i) pixel[4 * i] = blurred[i];
              });
}

}  // namespace zellab
