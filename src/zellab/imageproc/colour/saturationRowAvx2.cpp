#include "zellab/imageproc/colour/saturationRow.h"
#include "zellab/imageproc/core/rgbaPlanesAvx2.h"

namespace zellab {

namespace {

ZEL_TARGET_AVX2 inline __m256i channel(const avx2::WidePixels& pixels, __m256i weights) {
    const __m256i value = _mm256_srai_epi32(avx2::dot(pixels, weights), 8);
    return _mm256_min_epi32(_mm256_max_epi32(value, _mm256_setzero_si256()), _mm256_set1_epi32(255));
}

}  // namespace

ZEL_TARGET_AVX2 int saturationRowAvx2(Byte* row, int width, const SaturationWeights& w) {
    constexpr int kGroup = 8;
    const __m256i red = avx2::factors(w.red + w.own, w.green, w.blue, 0);
    const __m256i green = avx2::factors(w.red, w.green + w.own, w.blue, 0);
    const __m256i blue = avx2::factors(w.red, w.green, w.blue + w.own, 0);
    const __m256i alphaMask = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    int x = 0;
    for (; x <= width - kGroup; x += kGroup) {
        auto* const pixels = reinterpret_cast<__m256i*>(row + std::ptrdiff_t{4} * x);
        const avx2::WidePixels wide = avx2::loadWide(row + std::ptrdiff_t{4} * x, 0);
        const __m256i alpha = _mm256_and_si256(_mm256_loadu_si256(pixels), alphaMask);
        const __m256i redGreen =
            _mm256_or_si256(channel(wide, red), _mm256_slli_epi32(channel(wide, green), 8));
        const __m256i blueAlpha = _mm256_or_si256(_mm256_slli_epi32(channel(wide, blue), 16), alpha);
        _mm256_storeu_si256(pixels, _mm256_or_si256(redGreen, blueAlpha));
    }
    return x;
}

}  // namespace zellab
