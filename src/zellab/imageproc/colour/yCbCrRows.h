#pragma once

#include <cstddef>

#include "zellab/imageproc/core/imageView.h"

/// The arithmetic of the conversions and their AVX2 loops.

namespace zellab {

/// Factors in 1/16384.
struct ChannelFactors {
    int red, green, blue;
};
inline constexpr ChannelFactors kYFactors{4915, 9667, 1802}, kCbFactors{-2764, -5428, 8192},
    kCrFactors{8192, -6860, -1332};
inline constexpr int kFixedShift = 14;
inline constexpr int kFixedHalf = 1 << (kFixedShift - 1);
/// Offset of Cb and Cr: 128, and half a step for rounding.
inline constexpr int kChromaOffset = (128 << kFixedShift) + kFixedHalf;

/// Grey in thousandths, and half a level for rounding.
inline constexpr ChannelFactors kGrayFactors{299, 587, 114};
inline constexpr int kGrayHalf = 500, kGrayScale = 1000;

/// The AVX2 loops do 32 pixels at a time and return how many were done.
std::ptrdiff_t yCbCrPlanesAvx2(const Byte* rgba, Byte* y, Byte* cb, Byte* cr, std::ptrdiff_t count);
std::ptrdiff_t grayAvx2(const Byte* rgba, Byte* gray, std::ptrdiff_t count);

}  // namespace zellab
