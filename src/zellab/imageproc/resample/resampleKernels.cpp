#include "zellab/imageproc/resample/resampleKernels.h"

#include <immintrin.h>

#include <cstring>

#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/resample/resampleShuffles.h"

namespace zellab {

namespace {

constexpr int kHalf = kWeightSum / 2;

inline int load32(const void* p) {
    int value;
    std::memcpy(&value, p, 4);
    return value;
}

inline __m128i load64(const void* p) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(p));
}

inline __m128i load128(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}

/// Rounds 14-bit sums to words; the packing that follows limits them to bytes.
inline __m128i roundSums(__m128i sums) {
    return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(kHalf)), kWeightBits);
}

// Rows, baseline.

void horizontalRgbaPlain(const Byte* row, const AxisFilter& filter, std::size_t count, Byte* out) {
    const __m128i zero = _mm_setzero_si128();
    for (std::size_t i = 0; i < count; ++i) {
        const Byte* pixels = row + std::ptrdiff_t{4} * filter.first[i];
        const std::int16_t* weights = filter.weightsOf(i);
        __m128i sums = zero;
        for (int k = 0; k < filter.taps; k += 2) {
            const __m128i two = _mm_unpacklo_epi8(load64(pixels + 4 * k), zero);
            const __m128i pairs = _mm_unpacklo_epi16(two, _mm_srli_si128(two, 8));
            sums = _mm_add_epi32(sums, _mm_madd_epi16(pairs, _mm_set1_epi32(load32(weights + k))));
        }
        const __m128i words = _mm_packs_epi32(roundSums(sums), zero);
        const int pixel = _mm_cvtsi128_si32(_mm_packus_epi16(words, zero));
        std::memcpy(out + 4 * i, &pixel, 4);
    }
}

void horizontalPlane(const Byte* row, const AxisFilter& filter, std::size_t count, Byte* out) {
    const __m128i zero = _mm_setzero_si128();
    for (std::size_t i = 0; i < count; ++i) {
        const Byte* samples = row + filter.first[i];
        const std::int16_t* weights = filter.weightsOf(i);
        __m128i sums = zero;
        for (int k = 0; k < filter.rowLength; k += 4) {
            const __m128i four = _mm_unpacklo_epi8(_mm_cvtsi32_si128(load32(samples + k)), zero);
            sums = _mm_add_epi32(sums, _mm_madd_epi16(four, load64(weights + k)));
        }
        const int sum = _mm_cvtsi128_si32(sums) + _mm_cvtsi128_si32(_mm_srli_si128(sums, 4));
        out[i] = clampToByte((sum + kHalf) >> kWeightBits);
    }
}

void horizontalPlaneTwoTap(const Byte* row, const AxisFilter& filter, std::size_t count, Byte* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const Byte* samples = row + filter.first[i];
        const int share = filter.phase[i];
        // Two-tap weights are whole 128ths, so 7 bits give what 14 bits would.
        out[i] = static_cast<Byte>((samples[0] * (kPhases - share) + samples[1] * share + kPhases / 2) >>
                                   kPhaseBits);
    }
}

// Columns, baseline.

/// Sixteen bytes of a column pass.
inline __m128i mixRows(const Byte* const* rows, const std::int16_t* weights, int taps, std::size_t x) {
    const __m128i zero = _mm_setzero_si128();
    __m128i sums[4] = {zero, zero, zero, zero};
    for (int k = 0; k < taps; k += 2) {
        const __m128i a = load128(rows[k] + x), b = load128(rows[k + 1] + x);
        const __m128i pair = _mm_set1_epi32(load32(weights + k));
        const __m128i low = _mm_unpacklo_epi8(a, b), high = _mm_unpackhi_epi8(a, b);
        sums[0] = _mm_add_epi32(sums[0], _mm_madd_epi16(_mm_unpacklo_epi8(low, zero), pair));
        sums[1] = _mm_add_epi32(sums[1], _mm_madd_epi16(_mm_unpackhi_epi8(low, zero), pair));
        sums[2] = _mm_add_epi32(sums[2], _mm_madd_epi16(_mm_unpacklo_epi8(high, zero), pair));
        sums[3] = _mm_add_epi32(sums[3], _mm_madd_epi16(_mm_unpackhi_epi8(high, zero), pair));
    }
    return _mm_packus_epi16(_mm_packs_epi32(roundSums(sums[0]), roundSums(sums[1])),
                            _mm_packs_epi32(roundSums(sums[2]), roundSums(sums[3])));
}

/// The last bytes of a row, fewer than a register holds.
void verticalTail(const Byte* const* rows, const std::int16_t* weights, int taps, std::size_t begin,
                  std::size_t bytes, Byte* out) {
    for (std::size_t x = begin; x < bytes; ++x) {
        int sum = kHalf;
        for (int k = 0; k < taps; ++k) sum += weights[k] * rows[k][x];
        out[x] = clampToByte(sum >> kWeightBits);
    }
}

void verticalPlain(const Byte* const* rows, const std::int16_t* weights, int taps, std::size_t bytes,
                   Byte* out) {
    std::size_t x = 0;
    for (; x + 16 <= bytes; x += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), mixRows(rows, weights, taps, x));
    verticalTail(rows, weights, taps, x, bytes, out);
}

/// Eight words of a + round((b - a) * share): the two-tap mix without 32-bit steps.
inline __m128i mixTwo(__m128i a, __m128i b, __m128i share) {
    const __m128i product = _mm_mullo_epi16(_mm_sub_epi16(b, a), share);
    return _mm_add_epi16(a, _mm_srai_epi16(_mm_add_epi16(product, _mm_set1_epi16(kPhases / 2)), kPhaseBits));
}

void verticalTwoTapPlain(const Byte* const* rows, const std::int16_t* weights, int taps, std::size_t bytes,
                         Byte* out) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i share = _mm_set1_epi16(static_cast<short>(weights[1] >> (kWeightBits - kPhaseBits)));
    std::size_t x = 0;
    for (; x + 16 <= bytes; x += 16) {
        const __m128i a = load128(rows[0] + x), b = load128(rows[1] + x);
        const __m128i low = mixTwo(_mm_unpacklo_epi8(a, zero), _mm_unpacklo_epi8(b, zero), share);
        const __m128i high = mixTwo(_mm_unpackhi_epi8(a, zero), _mm_unpackhi_epi8(b, zero), share);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm_packus_epi16(low, high));
    }
    verticalTail(rows, weights, taps, x, bytes, out);
}

// The same with AVX2.

/// Four taps a step: pixels 0 and 1 in the low half, 2 and 3 in the high one.
ZEL_TARGET_AVX2 void horizontalRgbaAvx2(const Byte* row, const AxisFilter& filter, std::size_t count,
                                        Byte* out) {
    const __m256i pairUp = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15,  //
                                            0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    const __m256i spread = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    for (std::size_t i = 0; i < count; ++i) {
        const Byte* pixels = row + std::ptrdiff_t{4} * filter.first[i];
        const std::int16_t* weights = filter.weightsOf(i);
        __m256i sums = _mm256_setzero_si256();
        for (int k = 0; k < filter.rowLength; k += 4) {
            const __m256i pairs = _mm256_shuffle_epi8(_mm256_cvtepu8_epi16(load128(pixels + 4 * k)), pairUp);
            const __m256i four =
                _mm256_permutevar8x32_epi32(_mm256_castsi128_si256(load64(weights + k)), spread);
            sums = _mm256_add_epi32(sums, _mm256_madd_epi16(pairs, four));
        }
        const __m128i sum = _mm_add_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
        const __m128i words = _mm_packs_epi32(roundSums(sum), sum);
        const int pixel = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(out + 4 * i, &pixel, 4);
    }
}

/// Thirty-two bytes of a column pass.
ZEL_TARGET_AVX2 inline __m256i mixRowsAvx2(const Byte* const* rows, const std::int16_t* weights, int taps,
                                           std::size_t x) {
    const __m256i zero = _mm256_setzero_si256(), half = _mm256_set1_epi32(kHalf);
    __m256i s0 = half, s1 = half, s2 = half, s3 = half;
    for (int k = 0; k < taps; k += 2) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k] + x));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[k + 1] + x));
        const __m256i pair = _mm256_set1_epi32(load32(weights + k));
        const __m256i low = _mm256_unpacklo_epi8(a, b), high = _mm256_unpackhi_epi8(a, b);
        s0 = _mm256_add_epi32(s0, _mm256_madd_epi16(_mm256_unpacklo_epi8(low, zero), pair));
        s1 = _mm256_add_epi32(s1, _mm256_madd_epi16(_mm256_unpackhi_epi8(low, zero), pair));
        s2 = _mm256_add_epi32(s2, _mm256_madd_epi16(_mm256_unpacklo_epi8(high, zero), pair));
        s3 = _mm256_add_epi32(s3, _mm256_madd_epi16(_mm256_unpackhi_epi8(high, zero), pair));
    }
    const __m256i first =
        _mm256_packs_epi32(_mm256_srai_epi32(s0, kWeightBits), _mm256_srai_epi32(s1, kWeightBits));
    const __m256i second =
        _mm256_packs_epi32(_mm256_srai_epi32(s2, kWeightBits), _mm256_srai_epi32(s3, kWeightBits));
    return _mm256_packus_epi16(first, second);
}

ZEL_TARGET_AVX2 void verticalTwoTapAvx2(const Byte* const* rows, const std::int16_t* weights, int taps,
                                        std::size_t bytes, Byte* out) {
    const int share = weights[1] >> (kWeightBits - kPhaseBits);
    const __m256i shares = _mm256_set1_epi16(static_cast<short>((kPhases - share) | share << 8));
    const __m256i sign = _mm256_set1_epi8(-128), round = _mm256_set1_epi16(kSignedRound);
    std::size_t x = 0;
    for (; x + 32 <= bytes; x += 32) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[0] + x));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[1] + x));
        const __m256i low = _mm256_xor_si256(_mm256_unpacklo_epi8(a, b), sign);
        const __m256i high = _mm256_xor_si256(_mm256_unpackhi_epi8(a, b), sign);
        const __m256i lowSums = _mm256_add_epi16(_mm256_maddubs_epi16(shares, low), round);
        const __m256i highSums = _mm256_add_epi16(_mm256_maddubs_epi16(shares, high), round);
        const __m256i mixed = _mm256_packus_epi16(_mm256_srli_epi16(lowSums, kPhaseBits),
                                                  _mm256_srli_epi16(highSums, kPhaseBits));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + x), mixed);
    }
    verticalTail(rows, weights, taps, x, bytes, out);
}

ZEL_TARGET_AVX2 void verticalAvx2(const Byte* const* rows, const std::int16_t* weights, int taps,
                                  std::size_t bytes, Byte* out) {
    std::size_t x = 0;
    for (; x + 32 <= bytes; x += 32)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + x), mixRowsAvx2(rows, weights, taps, x));
    verticalTail(rows, weights, taps, x, bytes, out);
}

}  // namespace

HorizontalKernel horizontalKernel(platform::SimdLevel level, int channels, AxisFilter& filter) {
    const bool wide = level == platform::SimdLevel::avx2, twoTap = filter.taps == 2;
    if (wide && channels == 1 && planShuffledPlane(filter)) return horizontalShuffledPlane;
    if (wide && channels == 4 && twoTap && planShuffledPixels(filter)) return horizontalShuffledPixels;
    if (channels == 1) return twoTap ? horizontalPlaneTwoTap : horizontalPlane;
    return platform::pick(level, horizontalRgbaPlain, horizontalRgbaAvx2);
}

VerticalKernel verticalKernel(platform::SimdLevel level, int taps) {
    if (taps == 2) return platform::pick(level, verticalTwoTapPlain, verticalTwoTapAvx2);
    return platform::pick(level, verticalPlain, verticalAvx2);
}

}  // namespace zellab
