#include "zellab/imageproc/colour/yCbCr.h"

#include "platform/simdLevel.h"
#include "zellab/imageproc/colour/yCbCrRows.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int weigh(const ChannelFactors& f, int r, int g, int b, int offset) {
    return (f.red * r + f.green * g + f.blue * b + offset) >> kFixedShift;
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

void RGBAToYCbCrPlanes(ConstImageView image, PlaneView<Byte> y, PlaneView<Byte> cb, PlaneView<Byte> cr) {
    if (!image.valid() || !y.valid() || !cb.valid() || !cr.valid()) return;
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2;
    parallelRows(image.height, [&](int begin, int end) {
        for (int row = begin; row < end; ++row) {
            const Byte* p = image.row(row);
            Byte *toY = y.row(row), *toCb = cb.row(row), *toCr = cr.row(row);
            std::ptrdiff_t x = wide ? yCbCrPlanesAvx2(p, toY, toCb, toCr, image.width) : 0;
            for (p += 4 * x; x < image.width; ++x, p += 4)
                RGBToYCbCr(p, p + 1, p + 2, toY + x, toCb + x, toCr + x);
        }
    });
}

void RGBAToGray(ConstImageView image, PlaneView<Byte> gray) {
    if (!image.valid() || !gray.valid()) return;
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2;
    parallelRows(image.height, [&](int begin, int end) {
        for (int row = begin; row < end; ++row) {
            const Byte* p = image.row(row);
            Byte* const out = gray.row(row);
            std::ptrdiff_t x = wide ? grayAvx2(p, out, image.width) : 0;
            // Thousandths in integers: the same bytes as the weights in floating point give.
            for (p += 4 * x; x < image.width; ++x, p += 4)
                out[x] = static_cast<Byte>((kGrayFactors.red * p[0] + kGrayFactors.green * p[1] +
                                            kGrayFactors.blue * p[2] + kGrayHalf) /
                                           kGrayScale);
        }
    });
}

}  // namespace zellab
