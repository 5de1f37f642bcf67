#include "zellab/imageproc/colour/colorAdjust.h"

#include <algorithm>
#include <cmath>

#include "platform/simdLevel.h"
#include "zellab/imageproc/colour/saturationRow.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

namespace {

/// Luma weights of the saturation step in 1/256; grey stays grey.
constexpr float kRedWeight = 79.0f, kGreenWeight = 156.0f, kBlueWeight = 21.0f;
/// Percentages beyond this would overflow the 32-bit sums; the result is long saturated there.
constexpr int kMostPercent = 3000000;

SaturationWeights saturationWeights(int percent) {
    const float k = static_cast<float>(std::clamp(percent, -kMostPercent, kMostPercent)) * 0.01f + 1.0f;
    const float g = 1.0f - k;
    return {static_cast<int>(k * 256.0f), static_cast<int>(g * kRedWeight),
            static_cast<int>(g * kGreenWeight), static_cast<int>(g * kBlueWeight)};
}

}  // namespace

void saturationRow(Byte* pixel, int width, const SaturationWeights& w) {
    for (int x = 0; x < width; ++x, pixel += 4) {
        const int sum = pixel[0] * w.red + pixel[1] * w.green + pixel[2] * w.blue;
        for (int c = 0; c < 3; ++c) pixel[c] = clampToByte((pixel[c] * w.own + sum) >> 8);
    }
}

void SaturationAdjust(ImageView image, int percent) {
    if (!image.valid()) return;
    const SaturationWeights weights = saturationWeights(percent);
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2 && fitsAvx2(weights);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const int done = wide ? saturationRowAvx2(image.row(y), image.width, weights) : 0;
            saturationRow(image.row(y) + std::ptrdiff_t{4} * done, image.width - done, weights);
        }
    });
}

void LogBrightnessAdjust(ImageView image, int lift) {
    if (!image.valid() || lift == 0) return;
    const float t = static_cast<float>(lift) / 10.0f;
    const float s = (t >= 0.0f ? t : t / (1.0f - t)) / 2.5f;
    ByteTable table;
    for (int i = 0; i < 256; ++i) {
        const float inside = static_cast<float>(i) * s / 255.0f + 1.0f;
        const auto logarithm = static_cast<float>(std::log(static_cast<double>(inside)));
        const float shift = logarithm * -255.0f / std::log(3.0f);
        table[static_cast<std::size_t>(i)] = clampToByte(i - static_cast<int>(shift));
    }
    mapPixels(image, table);
}

}  // namespace zellab
