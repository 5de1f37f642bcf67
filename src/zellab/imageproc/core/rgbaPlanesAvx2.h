#pragma once

#include <immintrin.h>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

/// RGBA pixels in AVX2 registers. Include only from files that hold AVX2 kernels.

namespace zellab::avx2 {

inline constexpr int kPlanePixels = 32;

/// 32 pixels, one register a channel. The pixels stand in an order of their own, the same in all four.
struct PixelPlanes {
    __m256i red, green, blue, alpha;
};

/// In each half: bytes 4 i + c to 4 c + i. Its own inverse.
ZEL_TARGET_AVX2 inline __m256i transposeBytes(__m256i v) {
    return _mm256_shuffle_epi8(v, _mm256_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 0, 4,
                                                   8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
}

ZEL_TARGET_AVX2 inline PixelPlanes loadPlanes(const Byte* pixels) {
    const auto* const p = reinterpret_cast<const __m256i*>(pixels);
    const __m256i v0 = transposeBytes(_mm256_loadu_si256(p)), v1 = transposeBytes(_mm256_loadu_si256(p + 1));
    const __m256i v2 = transposeBytes(_mm256_loadu_si256(p + 2)),
                  v3 = transposeBytes(_mm256_loadu_si256(p + 3));
    const __m256i rg01 = _mm256_unpacklo_epi32(v0, v1), ba01 = _mm256_unpackhi_epi32(v0, v1);
    const __m256i rg23 = _mm256_unpacklo_epi32(v2, v3), ba23 = _mm256_unpackhi_epi32(v2, v3);
    return {_mm256_unpacklo_epi64(rg01, rg23), _mm256_unpackhi_epi64(rg01, rg23),
            _mm256_unpacklo_epi64(ba01, ba23), _mm256_unpackhi_epi64(ba01, ba23)};
}

ZEL_TARGET_AVX2 inline void storePlanes(Byte* pixels, const PixelPlanes& planes) {
    auto* const p = reinterpret_cast<__m256i*>(pixels);
    const __m256i rg01 = _mm256_unpacklo_epi32(planes.red, planes.green);
    const __m256i rg23 = _mm256_unpackhi_epi32(planes.red, planes.green);
    const __m256i ba01 = _mm256_unpacklo_epi32(planes.blue, planes.alpha);
    const __m256i ba23 = _mm256_unpackhi_epi32(planes.blue, planes.alpha);
    _mm256_storeu_si256(p, transposeBytes(_mm256_unpacklo_epi64(rg01, ba01)));
    _mm256_storeu_si256(p + 1, transposeBytes(_mm256_unpackhi_epi64(rg01, ba01)));
    _mm256_storeu_si256(p + 2, transposeBytes(_mm256_unpacklo_epi64(rg23, ba23)));
    _mm256_storeu_si256(p + 3, transposeBytes(_mm256_unpackhi_epi64(rg23, ba23)));
}

/// Eight pixels as 16-bit values with byte 3 replaced: what dot products of a pixel start from.
struct WidePixels {
    __m256i low, high;
};

/// @param constant  0..255, stands in the place of alpha, so that a product with it can serve as offset
ZEL_TARGET_AVX2 inline WidePixels loadWide(const Byte* pixels, int constant) {
    const __m256i alphaMask = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    v = _mm256_or_si256(_mm256_andnot_si256(alphaMask, v),
                        _mm256_set1_epi32(static_cast<int>(static_cast<unsigned>(constant) << 24)));
    const __m256i zero = _mm256_setzero_si256();
    return {_mm256_unpacklo_epi8(v, zero), _mm256_unpackhi_epi8(v, zero)};
}

/// Four 16-bit factors, for red, green, blue and the constant, eight pixels wide.
ZEL_TARGET_AVX2 inline __m256i factors(int red, int green, int blue, int constant) {
    const auto r = static_cast<short>(red), g = static_cast<short>(green), b = static_cast<short>(blue),
               k = static_cast<short>(constant);
    return _mm256_setr_epi16(r, g, b, k, r, g, b, k, r, g, b, k, r, g, b, k);
}

/// The dot products of eight pixels with the factors, as 32-bit values in the order of the pixels.
ZEL_TARGET_AVX2 inline __m256i dot(const WidePixels& pixels, __m256i factors) {
    return _mm256_hadd_epi32(_mm256_madd_epi16(pixels.low, factors), _mm256_madd_epi16(pixels.high, factors));
}

}  // namespace zellab::avx2
