#include "beautykernel/simpleskin/natureMix.h"

#include <immintrin.h>

#include <algorithm>

namespace zellab {

namespace {

/// Share of the picture itself, 0..1.
float keepShare(Byte green, Byte blurredGreen) {
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

/// The same for eight pixels; green as 32-bit values.
ZEL_TARGET_AVX2 inline __m256 keepShares(__m256i green, __m256i blurredGreen) {
    const __m256 unit = _mm256_set1_ps(kByteToUnit), one = _mm256_set1_ps(1.0f), two = _mm256_set1_ps(2.0f);
    const __m256 half = _mm256_set1_ps(0.5f);
    const __m256 g = _mm256_mul_ps(_mm256_cvtepi32_ps(green), unit);
    const __m256 blurred = _mm256_mul_ps(_mm256_cvtepi32_ps(blurredGreen), unit);
    __m256 light = _mm256_add_ps(_mm256_mul_ps(two, _mm256_sub_ps(one, blurred)), g);
    light = _mm256_max_ps(_mm256_sub_ps(light, one), _mm256_setzero_ps());
    light = _mm256_min_ps(light, one);
    __m256 share = _mm256_mul_ps(_mm256_add_ps(light, g), half);
    for (int round = 0; round < kContrastRounds; ++round) {
        const __m256 rest = _mm256_sub_ps(one, share);
        const __m256 dark = _mm256_mul_ps(_mm256_mul_ps(two, share), share);
        const __m256 bright = _mm256_sub_ps(one, _mm256_mul_ps(_mm256_mul_ps(two, rest), rest));
        share = _mm256_blendv_ps(bright, dark, _mm256_cmp_ps(share, half, _CMP_LE_OQ));
    }
    return share;
}

/// Eight bytes, two pixels, as floats.
ZEL_TARGET_AVX2 inline __m256 loadTwoPixels(const Byte* bytes) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes))));
}

/// Pixels 2 * pair and 2 * pair + 1 of eight, mixed by their shares; as 32-bit values.
ZEL_TARGET_AVX2 inline __m256i mixTwoPixels(const Byte* pixels, const Byte* toned, __m256 shares, int pair) {
    const __m256i both = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    const __m256 share =
        _mm256_permutevar8x32_ps(shares, _mm256_add_epi32(both, _mm256_set1_epi32(2 * pair)));
    const __m256 tone =
        _mm256_mul_ps(loadTwoPixels(toned + 8 * pair), _mm256_sub_ps(_mm256_set1_ps(1.0f), share));
    const __m256 kept = _mm256_mul_ps(loadTwoPixels(pixels + 8 * pair), share);
    return _mm256_cvttps_epi32(_mm256_add_ps(tone, kept));
}

ZEL_TARGET_AVX2 inline void mixEightPixels(Byte* pixels, const Byte* toned, const Byte* blurredGreen) {
    const __m256i before = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    const __m256i green = _mm256_and_si256(_mm256_srli_epi32(before, 8), _mm256_set1_epi32(255));
    const __m256i blurred =
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(blurredGreen)));
    const __m256 shares = keepShares(green, blurred);
    const __m256i words01 =
        _mm256_packs_epi32(mixTwoPixels(pixels, toned, shares, 0), mixTwoPixels(pixels, toned, shares, 1));
    const __m256i words23 =
        _mm256_packs_epi32(mixTwoPixels(pixels, toned, shares, 2), mixTwoPixels(pixels, toned, shares, 3));
    // Packing works in halves: pixels 0 2 4 6, then 1 3 5 7.
    const __m256i mixed = _mm256_permutevar8x32_epi32(_mm256_packus_epi16(words01, words23),
                                                      _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    const __m256i alpha = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels), _mm256_blendv_epi8(mixed, before, alpha));
}

}  // namespace

void mixPlain(Byte* pixels, const Byte* toned, const Byte* blurredGreen, int count) {
    for (int i = 0; i < count; ++i) {
        const float share = keepShare(pixels[4 * i + 1], blurredGreen[i]);
        for (int c = 4 * i; c < 4 * i + 3; ++c)
            pixels[c] = static_cast<Byte>(static_cast<float>(toned[c]) * (1.0f - share) +
                                          static_cast<float>(pixels[c]) * share);
    }
}

ZEL_TARGET_AVX2 void mixAvx2(Byte* pixels, const Byte* toned, const Byte* blurredGreen, int count) {
    int i = 0;
    for (; i + 8 <= count; i += 8) mixEightPixels(pixels + 4 * i, toned + 4 * i, blurredGreen + i);
    mixPlain(pixels + 4 * i, toned + 4 * i, blurredGreen + i, count - i);
}

}  // namespace zellab
