#include "beautykernel/simpleskin/natureSmooth.h"

#include <algorithm>
#include <array>

#include "beautykernel/simpleskin/natureTable.h"
#include "zellab/imageproc/imageView.h"
#include "zellab/imageproc/stackBlur.h"
#include "zellab/imageproc/stackBlurPasses.h"

namespace zellab {

namespace {

/// Bytes to 0..1. A little less than 1 / 255, and part of the result.
constexpr float kByteToUnit = 0.0039215f;

constexpr int kContrastRounds = 3;

/// Pixels that are mixed together, so that the steps run as vector code over short arrays.
constexpr int kRun = 64;

/// Share of the picture itself, 0..1, from green and blurred green.
inline float keepShare(Byte green, Byte blurredGreen) {
    const float g = static_cast<float>(green) * kByteToUnit;
    const float blurred = static_cast<float>(blurredGreen) * kByteToUnit;
    const float light = std::min(std::max(2.0f * (1.0f - blurred) + g - 1.0f, 0.0f), 1.0f);
    float share = (light + g) * 0.5f;
    for (int round = 0; round < kContrastRounds; ++round) {
        const float dark = 2.0f * share * share, bright = 1.0f - 2.0f * (1.0f - share) * (1.0f - share);
        share = share <= 0.5f ? dark : bright;
    }
    return share;
}

void mixRun(Byte* pixels, const Byte* blurredGreen, int count) {
    Byte toned[4 * kRun];
    float share[kRun], shares[4 * kRun];
    for (int i = 0; i < count; ++i) share[i] = keepShare(pixels[4 * i + 1], blurredGreen[i]);
    for (int i = 0; i < count; ++i) {
        for (int c = 4 * i; c < 4 * i + 3; ++c) {
            toned[c] = NatureTable[pixels[c]];
            shares[c] = share[i];
        }
        // A full share keeps alpha, in the same steps as colour.
        toned[4 * i + 3] = 0;
        shares[4 * i + 3] = 1.0f;
    }
    for (int c = 0; c < 4 * count; ++c)
        pixels[c] = static_cast<Byte>(static_cast<int>(static_cast<float>(toned[c]) * (1.0f - shares[c]) +
                                                       static_cast<float>(pixels[c]) * shares[c]));
}

}  // namespace

void natureSmooth(unsigned char* rgba, int width, int height, int radius) {
    const ImageView image(rgba, width, height);
    if (!image.valid()) return;
    // Of the blurred picture only green is looked at.
    const BlurSource green{image.data + 1, width, height, image.stride, 4, 1, false};
    const int limited = std::max(stackBlurRadius(width, height, radius), 0);
    stackBlur(green, limited, stackBlurWorkers(width, height),
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  for (std::ptrdiff_t i = 0; i < count; i += kRun)
                      mixRun(image.row(y) + 4 * (first + i), blurred + i,
                             static_cast<int>(std::min<std::ptrdiff_t>(kRun, count - i)));
              });
}

}  // namespace zellab
