#pragma once

#include <emmintrin.h>

#include <cstddef>

#include "zellab/imageproc/core/imageView.h"

/// Small transpositions for kernels that treat a row like a column. SSE2 is part of the x86-64 baseline.

namespace zellab {

/// Turns 4 rows of 4 four-byte pixels; strides in bytes.
inline void transposePixels4x4(const Byte* source, std::size_t sourceStride, Byte* target,
                               std::size_t targetStride) {
    const auto load = [&](std::size_t row) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + row * sourceStride));
    };
    const __m128i a = load(0), b = load(1), c = load(2), d = load(3);
    const __m128i ab01 = _mm_unpacklo_epi32(a, b), cd01 = _mm_unpacklo_epi32(c, d);
    const __m128i ab23 = _mm_unpackhi_epi32(a, b), cd23 = _mm_unpackhi_epi32(c, d);
    const auto store = [&](std::size_t row, __m128i value) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + row * targetStride), value);
    };
    store(0, _mm_unpacklo_epi64(ab01, cd01));
    store(1, _mm_unpackhi_epi64(ab01, cd01));
    store(2, _mm_unpacklo_epi64(ab23, cd23));
    store(3, _mm_unpackhi_epi64(ab23, cd23));
}

/// Turns 8 rows of 8 bytes; strides in bytes.
inline void transposeBytes8x8(const Byte* source, std::size_t sourceStride, Byte* target,
                              std::size_t targetStride) {
    const auto load = [&](std::size_t row) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(source + row * sourceStride));
    };
    const __m128i rows01 = _mm_unpacklo_epi8(load(0), load(1)), rows23 = _mm_unpacklo_epi8(load(2), load(3));
    const __m128i rows45 = _mm_unpacklo_epi8(load(4), load(5)), rows67 = _mm_unpacklo_epi8(load(6), load(7));
    // Four bytes of each of columns 0 to 3, then 4 to 7.
    const __m128i top0 = _mm_unpacklo_epi16(rows01, rows23), top4 = _mm_unpackhi_epi16(rows01, rows23);
    const __m128i low0 = _mm_unpacklo_epi16(rows45, rows67), low4 = _mm_unpackhi_epi16(rows45, rows67);
    const auto storePair = [&](std::size_t column, __m128i pair) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(target + column * targetStride), pair);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(target + (column + 1) * targetStride),
                         _mm_unpackhi_epi64(pair, pair));
    };
    storePair(0, _mm_unpacklo_epi32(top0, low0));
    storePair(2, _mm_unpackhi_epi32(top0, low0));
    storePair(4, _mm_unpacklo_epi32(top4, low4));
    storePair(6, _mm_unpackhi_epi32(top4, low4));
}

}  // namespace zellab
