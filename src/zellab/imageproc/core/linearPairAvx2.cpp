#include <immintrin.h>

#include "zellab/imageproc/core/linearPair.h"

namespace zellab {

ZEL_TARGET_AVX2 int combineLinearAvx2(Byte* target, const Byte* first, const Byte* second, int width,
                                      const LinearPair& pair) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i factors = _mm256_set1_epi32((pair.factors[0] & 0xffff) |
                                              static_cast<int>(static_cast<unsigned>(pair.factors[1]) << 16));
    const __m256i bias = _mm256_set1_epi32(pair.bias),
                  alpha = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    const __m128i shift = _mm_cvtsi32_si128(pair.shift);
    const auto four = [&](__m256i samples) ZEL_TARGET_AVX2 {
        return _mm256_sra_epi32(_mm256_add_epi32(_mm256_madd_epi16(samples, factors), bias), shift);
    };
    // Eight samples of both pictures side by side, as words.
    const auto eight = [&](__m256i samples) ZEL_TARGET_AVX2 {
        return _mm256_packs_epi32(four(_mm256_unpacklo_epi8(samples, zero)),
                                  four(_mm256_unpackhi_epi8(samples, zero)));
    };
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const std::ptrdiff_t at = std::ptrdiff_t{4} * x;
        auto* const to = reinterpret_cast<__m256i*>(target + at);
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(first + at));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(second + at));
        const __m256i kept = _mm256_loadu_si256(to);
        const __m256i mixed =
            _mm256_packus_epi16(eight(_mm256_unpacklo_epi8(a, b)), eight(_mm256_unpackhi_epi8(a, b)));
        _mm256_storeu_si256(to, _mm256_blendv_epi8(mixed, kept, alpha));
    }
    return x;
}

}  // namespace zellab
