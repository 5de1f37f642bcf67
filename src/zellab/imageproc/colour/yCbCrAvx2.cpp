#include "zellab/imageproc/colour/yCbCrRows.h"
#include "zellab/imageproc/core/rgbaPlanesAvx2.h"

namespace zellab {

namespace {

/// Four registers of eight 32-bit values each, in the order of the pixels, to 32 limited bytes.
ZEL_TARGET_AVX2 inline void storeBytes(Byte* target, const __m256i (&values)[4]) {
    const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(values[0], values[1]),
                                               _mm256_packs_epi32(values[2], values[3]));
    // The packs work half by half; this puts the groups of four bytes back in a row.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), _mm256_permutevar8x32_epi32(packed, order));
}

/// What stands in alpha's place times its factor makes the offset of each sum.
constexpr int kConstant = 128;
static_assert(kConstant * (kFixedHalf / kConstant) == kFixedHalf);
static_assert(kConstant * (kChromaOffset / kConstant) == kChromaOffset && kChromaOffset / kConstant < 32768);

ZEL_TARGET_AVX2 inline __m256i withOffset(const ChannelFactors& f, int offset) {
    return avx2::factors(f.red, f.green, f.blue, offset / kConstant);
}

}  // namespace

ZEL_TARGET_AVX2 std::ptrdiff_t yCbCrPlanesAvx2(const Byte* rgba, Byte* y, Byte* cb, Byte* cr,
                                               std::ptrdiff_t count) {
    const __m256i forY = withOffset(kYFactors, kFixedHalf), forCb = withOffset(kCbFactors, kChromaOffset),
                  forCr = withOffset(kCrFactors, kChromaOffset);
    std::ptrdiff_t i = 0;
    for (; i <= count - 32; i += 32) {
        __m256i ys[4], cbs[4], crs[4];
        for (int k = 0; k < 4; ++k) {
            const avx2::WidePixels pixels = avx2::loadWide(rgba + 4 * (i + 8 * k), kConstant);
            ys[k] = _mm256_srai_epi32(avx2::dot(pixels, forY), kFixedShift);
            cbs[k] = _mm256_srai_epi32(avx2::dot(pixels, forCb), kFixedShift);
            crs[k] = _mm256_srai_epi32(avx2::dot(pixels, forCr), kFixedShift);
        }
        storeBytes(y + i, ys);
        storeBytes(cb + i, cbs);
        storeBytes(cr + i, crs);
    }
    return i;
}

ZEL_TARGET_AVX2 std::ptrdiff_t grayAvx2(const Byte* rgba, Byte* gray, std::ptrdiff_t count) {
    const __m256i redBlue = _mm256_set1_epi32(kGrayFactors.red | kGrayFactors.blue << 16);
    const __m256i green = _mm256_set1_epi32(kGrayFactors.green), half = _mm256_set1_epi32(kGrayHalf);
    const __m256i even = _mm256_set1_epi16(0xff);
    // Eighths of the sums of eight pixels; they fit 16 bits.
    const auto eighths = [&](const Byte* pixels) ZEL_TARGET_AVX2 {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
        const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(_mm256_and_si256(v, even), redBlue),
                                             _mm256_madd_epi16(_mm256_srli_epi16(v, 8), green));
        return _mm256_srli_epi32(_mm256_add_epi32(sum, half), 3);
    };
    // Dividing by 1000: by 8, then by 125 as a product with 2^22 / 125, exact over the whole range.
    const __m256i reciprocal = _mm256_set1_epi16(static_cast<short>(33555));
    const auto levels = [&](const Byte* pixels) ZEL_TARGET_AVX2 {
        const __m256i words = _mm256_packus_epi32(eighths(pixels), eighths(pixels + 32));
        return _mm256_srli_epi16(_mm256_mulhi_epu16(words, reciprocal), 6);
    };
    // The packs work half by half; this puts the groups of four bytes back in a row.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    std::ptrdiff_t i = 0;
    for (; i <= count - 32; i += 32) {
        const Byte* const pixels = rgba + 4 * i;
        const __m256i packed = _mm256_packus_epi16(levels(pixels), levels(pixels + 64));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(gray + i), _mm256_permutevar8x32_epi32(packed, order));
    }
    return i;
}

}  // namespace zellab
