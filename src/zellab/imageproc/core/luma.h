#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Rec. 601 luma in 1/1024 of red, green and blue. They add up to 1024, so that grey keeps its value.
constexpr int kLumaRed = 306, kLumaGreen = 601, kLumaBlue = 117, kLumaShift = 10;
static_assert(kLumaRed + kLumaGreen + kLumaBlue == 1 << kLumaShift, "grey must stay grey");

/// The luma of an RGB(A) pixel, truncated, 0..255.
[[gnu::always_inline]] inline Byte lumaOf(const Byte* pixel) {
    return static_cast<Byte>((kLumaRed * pixel[0] + kLumaGreen * pixel[1] + kLumaBlue * pixel[2]) >>
                             kLumaShift);
}

}  // namespace zellab
