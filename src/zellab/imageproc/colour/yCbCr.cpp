#include "zellab/imageproc/colour/yCbCr.h"

#include <algorithm>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/colour/yCbCrRows.h"

namespace zellab {

namespace {

constexpr int weigh(const ChannelFactors& f, int r, int g, int b, int offset) {
    return (f.red * r + f.green * g + f.blue * b + offset) >> kFixedShift;
}

/// Calls body(begin, end) on parts of [0, count): one for each processor, a single one where threads would
/// cost more than they bring.
template <typename Body>
void parallelPixels(int count, const Body& body) {
    constexpr int kWorthAThread = 1 << 16;  // pixels
    const int workers = count < kWorthAThread ? 1 : std::max(ProcessorCount(), 1);
    const int chunk = count / workers + 1;
    runTasks(workers, workers, [&](int k) {
        const std::ptrdiff_t begin = std::ptrdiff_t{k} * chunk;
        const std::ptrdiff_t end = std::min<std::ptrdiff_t>(begin + chunk, count);
        if (begin < end) body(begin, end);
    });
}

}  // namespace

void RGBToYCbCr(const unsigned char* r, const unsigned char* g, const unsigned char* b, unsigned char* y,
                unsigned char* cb, unsigned char* cr) {
    const int red = *r, green = *g, blue = *b;
    *y = static_cast<unsigned char>(weigh(kYFactors, red, green, blue, kFixedHalf));
    *cb = clampToByte(weigh(kCbFactors, red, green, blue, kChromaOffset));
    *cr = clampToByte(weigh(kCrFactors, red, green, blue, kChromaOffset));
}

void YCbCrToRGB(const unsigned char* y, const unsigned char* cb, const unsigned char* cr, unsigned char* r,
                unsigned char* g, unsigned char* b) {
    constexpr int kRedFromV = 22970, kGreenFromU = -5638, kGreenFromV = -11700, kBlueFromU = 29032;
    const int luma = (*y << kFixedShift) + kFixedHalf, u = *cb - 128, v = *cr - 128;
    *r = clampToByte((luma + kRedFromV * v) >> kFixedShift);
    *g = clampToByte((luma + kGreenFromU * u + kGreenFromV * v) >> kFixedShift);
    *b = clampToByte((luma + kBlueFromU * u) >> kFixedShift);
}

void RGBToLuma(const unsigned char* r, const unsigned char* g, const unsigned char* b, unsigned char* y) {
    *y = static_cast<unsigned char>(weigh(kYFactors, *r, *g, *b, kFixedHalf));
}

void RGBAToYCbCrPlanes(unsigned char* rgba, unsigned char* y, unsigned char* cb, unsigned char* cr,
                       int pixelCount) {
    if (!rgba || !y || !cb || !cr || pixelCount < 1) return;
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2;
    parallelPixels(pixelCount, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        std::ptrdiff_t i = begin;
        if (wide) i += yCbCrPlanesAvx2(rgba + 4 * begin, y + begin, cb + begin, cr + begin, end - begin);
        for (; i < end; ++i) {
            const Byte* const p = rgba + 4 * i;
            RGBToYCbCr(p, p + 1, p + 2, y + i, cb + i, cr + i);
        }
    });
}

void RGBAToGray(const unsigned char* rgba, unsigned char* plane, int pixelCount) {
    if (!rgba || !plane || pixelCount < 1) return;
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2;
    parallelPixels(pixelCount, [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        std::ptrdiff_t i = begin;
        if (wide) i += grayAvx2(rgba + 4 * begin, plane + begin, end - begin);
        // Thousandths in integers: the same bytes as the weights in floating point give.
        for (; i < end; ++i) {
            const Byte* const p = rgba + 4 * i;
            plane[i] = static_cast<Byte>(
                (kGrayFactors.red * p[0] + kGrayFactors.green * p[1] + kGrayFactors.blue * p[2] + kGrayHalf) /
                kGrayScale);
        }
    });
}

}  // namespace zellab
