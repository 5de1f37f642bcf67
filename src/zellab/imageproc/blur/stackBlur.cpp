#include "zellab/imageproc/blur/stackBlur.h"

#include <algorithm>
#include <cstring>

#include "frame/processorCount.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"

namespace zellab {

namespace {

/// Pictures of fewer pixels stay on the caller's thread.
constexpr std::size_t kFewestPixelsForWorkers = 12101, kFewestGrayForWorkers = 36101;

bool usable(const Byte* pixels, int width, int height, int radius) {
    return pixels && width > 0 && height > 0 && radius >= 0;
}

int workersFor(int width, int height, std::size_t fewestPixels) {
    return sampleCount(width, height) < fewestPixels ? 1 : ProcessorCount();
}

void blurPixels(Byte* pixels, int width, int height, int radius, int workers, bool keepsAlpha) {
    if (!usable(pixels, width, height, radius)) return;
    const ImageView image(pixels, width, height);
    const BlurSource source{image.data, width, height, image.stride, 4, 4, keepsAlpha};
    stackBlur(source, radius, workers,
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

void CStackBlur::StackBlurEx(unsigned char* pixels, int width, int height, int rowBytes, int radius) {
    if (width < 1 || rowBytes < width) return;
    if (rowBytes / width == 1)
        StackBlurGray(pixels, width, height, radius);
    else
        StackBlurRGBA(pixels, width, height, radius);
}

void CStackBlur::StackBlurExOptimized(unsigned char* pixels, int width, int height, int radius, int threads) {
    blurPixels(pixels, width, height, radius, threads, true);
}

void CStackBlur::StackBlurExGray(unsigned char* plane, int width, int height, int radius, int threads) {
    if (!usable(plane, width, height, radius)) return;
    const PlaneView<Byte> view(plane, width, height);
    const BlurSource source{view.data, width, height, view.stride, 1, 1, false};
    stackBlur(source, radius, threads,
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  std::memcpy(view.row(y) + first, blurred, static_cast<std::size_t>(count));
              });
}

void StackBlurRGBA(unsigned char* pixels, int width, int height, int radius) {
    const int limited = stackBlurRadius(width, height, radius);
    if (limited > 0)
        CStackBlur::StackBlurExOptimized(pixels, width, height, limited, stackBlurWorkers(width, height));
}

void StackBlurGray(unsigned char* plane, int width, int height, int radius) {
    const int limited = stackBlurRadius(width, height, radius);
    if (limited > 0)
        CStackBlur::StackBlurExGray(plane, width, height, limited,
                                    workersFor(width, height, kFewestGrayForWorkers));
}

void StackBlurAllChannels(unsigned char* pixels, int width, int height, int radius) {
    blurPixels(pixels, width, height, radius, stackBlurWorkers(width, height), false);
}

void MaskStackBlur(unsigned char* pixels, int width, int height, int radius) {
    if (!usable(pixels, width, height, radius)) return;
    const ImageView image(pixels, width, height);
    const BlurSource source{image.data, width, height, image.stride, 4, 1, false};
    stackBlur(source, radius, 1, [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
        Byte* pixel = image.row(y) + 4 * first;
        for (std::ptrdiff_t i = 0; i < count; ++i) pixel[4 * i] = blurred[i];
    });
}

}  // namespace zellab
