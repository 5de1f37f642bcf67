#include <immintrin.h>

#include "platform/simdLevel.h"
#include "zellab/imageproc/colour/colorCubeCells.h"

namespace zellab {

namespace {

/// Red's step of one pixel: in each half this and the next green's four channels, scaled by 128 and less
/// 128 * 128, so that they fit 16 bits.
ZEL_TARGET_AVX2 inline __m256i alongRed(const Byte* pixel, const CubeCells& cells) {
    const __m256i corners = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cells.corners(pixel)));
    return _mm256_maddubs_epi16(_mm256_set1_epi16(cells.redWeights(pixel[0])), corners);
}

ZEL_TARGET_AVX2 inline __m128i pairOf(const std::int64_t* first, const std::int64_t* second) {
    return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(first)),
                              _mm_loadl_epi64(reinterpret_cast<const __m128i*>(second)));
}

/// Two neighbouring pixels, eight 16-bit values that a pack with saturation limits to bytes.
ZEL_TARGET_AVX2 inline __m128i twoPixels(const Byte* pixels, const CubeCells& cells) {
    const __m256i first = alongRed(pixels, cells), second = alongRed(pixels + 4, cells);
    const __m256i thisGreen = _mm256_unpacklo_epi64(first, second);
    const __m256i nextGreen = _mm256_unpackhi_epi64(first, second);
    // Green: (difference * fraction + 64) >> 7, as the rounded high product with the fraction times 256.
    const __m256i greenFraction =
        _mm256_broadcastsi128_si256(pairOf(cells.greenFraction(pixels[1]), cells.greenFraction(pixels[5])));
    const __m256i alongGreen = _mm256_add_epi16(
        _mm256_mulhrs_epi16(_mm256_sub_epi16(nextGreen, thisGreen), greenFraction), thisGreen);

    // Blue: (difference * fraction + 128) >> 14 is (difference * 4 * fraction + 512) >> 16. The high half of
    // the product lacks the carry that 512 brings about where the low half is 65024 or more.
    const __m128i thisBlue = _mm256_castsi256_si128(alongGreen);
    const __m128i difference = _mm_sub_epi16(_mm256_extracti128_si256(alongGreen, 1), thisBlue);
    const __m128i fraction = pairOf(cells.blueFraction(pixels[2]), cells.blueFraction(pixels[6]));
    const __m128i low = _mm_add_epi16(_mm_mullo_epi16(difference, fraction), _mm_set1_epi16(512));
    const __m128i carry = _mm_cmpeq_epi16(_mm_srli_epi16(low, 9), _mm_setzero_si128());  // -1 where set
    const __m128i share = _mm_sub_epi16(_mm_mulhi_epi16(difference, fraction), carry);
    constexpr short kLift = 128 * 128 + 64;  // what the corners lack, and half a level
    return _mm_add_epi16(_mm_srai_epi16(_mm_add_epi16(thisBlue, _mm_set1_epi16(kLift)), 7), share);
}

}  // namespace

ZEL_TARGET_AVX2 int cubeRowAvx2(Byte* row, int width, const CubeCells& cells) {
    constexpr int kGroup = 4;
    const __m128i alphaMask = _mm_set1_epi32(static_cast<int>(0xff000000u));
    int x = 0;
    for (; x <= width - kGroup; x += kGroup) {
        Byte* const pixels = row + std::ptrdiff_t{4} * x;
        auto* const target = reinterpret_cast<__m128i*>(pixels);
        const __m128i colours = _mm_packus_epi16(twoPixels(pixels, cells), twoPixels(pixels + 8, cells));
        _mm_storeu_si128(target, _mm_blendv_epi8(colours, _mm_loadu_si128(target), alphaMask));
    }
    return x;
}

}  // namespace zellab
