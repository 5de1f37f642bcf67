#pragma once

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

/// The mix of the natural smoothing, pixel by pixel, in two forms that give the same bytes.

namespace zellab {

/// Bytes to 0..1. A little less than 1 / 255, and part of the result.
inline constexpr float kByteToUnit = 0.0039215f;

inline constexpr int kContrastRounds = 3;

/// Mixes colour bytes of `count` RGBA pixels with their toned values: the darker the soft light of green and
/// blurred green (a byte a pixel), the more of the tone. Alpha stays; in `toned` it is not looked at.
using NatureMix = void (*)(Byte* pixels, const Byte* toned, const Byte* blurredGreen, int count);

void mixPlain(Byte* pixels, const Byte* toned, const Byte* blurredGreen, int count);
void mixAvx2(Byte* pixels, const Byte* toned, const Byte* blurredGreen, int count);

inline NatureMix natureMix(platform::SimdLevel level) {
    return platform::pick(level, mixPlain, mixAvx2);
}

}  // namespace zellab
