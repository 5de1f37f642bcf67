#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "zellab/imageproc/core/imageView.h"

/// Weighted sums of rows and of neighbours in whole numbers.

namespace zellab::Bokeh {

inline constexpr int kWeightBits = 14;  // a weight of 1
/// Between the axes a level has 128 steps, so that the brightest still fits 16 bits with a sign.
inline constexpr int kLevelBits = 7;

/// Two weights, four times over.
inline __m128i pairOfWeights(const std::int16_t* weights) {
    std::int32_t both;
    std::memcpy(&both, weights, sizeof both);
    return _mm_set1_epi32(both);
}

/// The weighted sum of `taps` rows (an even number) of `count` bytes, in steps of a level. The weights sum to
/// 1 << kWeightBits.
void sumRows(const Byte* const* rows, int taps, const std::int16_t* weights, int count, std::int16_t* sums);

}  // namespace zellab::Bokeh
