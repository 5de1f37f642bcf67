#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"

#include <immintrin.h>

#include <array>
#include <cstring>

#include "frame/zel_log.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

constexpr unsigned char kOpaque = 255;

/// How one alpha mixes the four bytes of its pixel with white: byte * share + white. The alpha byte itself
/// becomes 0 * alpha + 255.
struct alignas(16) AlphaMix {
    float share[4], white[4];
};

/// Divisions and products in double precision; the two results are single.
constexpr std::array<AlphaMix, 256> buildAlphaMixes() {
    std::array<AlphaMix, 256> mixes{};
    for (int alpha = 0; alpha < 256; ++alpha) {
        const auto share = static_cast<float>(alpha / 255.0);
        const auto white = static_cast<float>(static_cast<int>((1.0 - share) * 255.0));
        mixes[static_cast<std::size_t>(alpha)] = {{share, share, share, 0.0f},
                                                  {white, white, white, kOpaque}};
    }
    return mixes;
}
constexpr auto kAlphaMixes = buildAlphaMixes();

/// One pixel, as four integers, mixed with white; single precision.
__m128i mixPixel(__m128i pixel, unsigned char alpha) {
    const AlphaMix& mix = kAlphaMixes[alpha];
    const __m128 share = _mm_load_ps(mix.share), white = _mm_load_ps(mix.white);
    return _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(_mm_cvtepi32_ps(pixel), share), white));
}

/// Four neighbours at once; pixels that are all opaque stay what they are.
void flattenFour(const unsigned char* from, unsigned char* to) {
    constexpr int kAlphaBytes = 0x8888;
    const __m128i zero = _mm_setzero_si128();
    __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i full = _mm_cmpeq_epi8(pixels, _mm_set1_epi8(-1));
    if ((_mm_movemask_epi8(full) & kAlphaBytes) != kAlphaBytes) {
        const __m128i low = _mm_unpacklo_epi8(pixels, zero), high = _mm_unpackhi_epi8(pixels, zero);
        const __m128i first = mixPixel(_mm_unpacklo_epi16(low, zero), from[3]);
        const __m128i second = mixPixel(_mm_unpackhi_epi16(low, zero), from[7]);
        const __m128i third = mixPixel(_mm_unpacklo_epi16(high, zero), from[11]);
        const __m128i fourth = mixPixel(_mm_unpackhi_epi16(high, zero), from[15]);
        pixels = _mm_packus_epi16(_mm_packs_epi32(first, second), _mm_packs_epi32(third, fourth));
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), pixels);
}

/// bytes * alpha / 255, cut off, in 16 bits: the division is a product with 2^23 / 255, exact for such products.
ZEL_TARGET_AVX2 inline __m256i shareOf(__m256i bytes, __m256i alpha) {
    const __m256i product = _mm256_mullo_epi16(bytes, alpha);
    return _mm256_srli_epi16(_mm256_mulhi_epu16(product, _mm256_set1_epi16(static_cast<short>(0x8081))), 7);
}

/// Whole pixels of a row, eight at a time; returns how many were done. byte * alpha / 255, cut off, and a white
/// of 254 - alpha, or 255 - alpha at both ends, are what the mixes come to for all pairs of bytes.
ZEL_TARGET_AVX2 int flattenRowAvx2(const unsigned char* from, unsigned char* to, int width) {
    const __m256i zero = _mm256_setzero_si256(), full = _mm256_set1_epi8(-1);
    const __m256i spread = _mm256_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15, 3, 3, 3,
                                            3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
    const __m256i alphas = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const std::ptrdiff_t at = std::ptrdiff_t{ImageView::kChannels} * x;
        const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + at));
        const __m256i alpha = _mm256_shuffle_epi8(pixels, spread);
        const __m256i ends = _mm256_or_si256(_mm256_cmpeq_epi8(alpha, zero), _mm256_cmpeq_epi8(alpha, full));
        const __m256i white = _mm256_sub_epi8(_mm256_sub_epi8(_mm256_set1_epi8(-2), alpha), ends);
        const __m256i shares = _mm256_packus_epi16(
            shareOf(_mm256_unpacklo_epi8(pixels, zero), _mm256_unpacklo_epi8(alpha, zero)),
            shareOf(_mm256_unpackhi_epi8(pixels, zero), _mm256_unpackhi_epi8(alpha, zero)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + at),
                            _mm256_or_si256(_mm256_add_epi8(shares, white), alphas));
    }
    return x;
}

void flattenRow(const unsigned char* from, unsigned char* to, int width) {
    constexpr int kAtOnce = 4;
    int x = 0;
    for (; x + kAtOnce <= width; x += kAtOnce) {
        flattenFour(from, to);
        from += kAtOnce * ImageView::kChannels;
        to += kAtOnce * ImageView::kChannels;
    }
    for (; x < width; ++x, from += ImageView::kChannels, to += ImageView::kChannels) {
        const AlphaMix& mix = kAlphaMixes[from[3]];
        for (int c = 0; c < ImageView::kChannels; ++c)
            to[c] = static_cast<unsigned char>(static_cast<float>(from[c]) * mix.share[c] + mix.white[c]);
    }
}

}  // namespace

void flattenOntoWhite(ConstImageView from, ImageView to) {
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2;
    parallelRows(from.height, [=](int yBegin, int yEnd) {
        for (int y = yBegin; y < yEnd; ++y) {
            const int done = wide ? flattenRowAvx2(from.row(y), to.row(y), from.width) : 0;
            const std::ptrdiff_t at = std::ptrdiff_t{ImageView::kChannels} * done;
            flattenRow(from.row(y) + at, to.row(y) + at, from.width - done);
        }
    });
}

ImageBuffer alphaAdjust(ImageBuffer pixels, ImageSize decoded, ImageSize held) {
    if (!pixels || decoded.width <= 0 || decoded.height <= 0) {
        ZEL_LOG_ERROR("%s(%d) param error.", "AlphaAdjust", __LINE__);
        return pixels;
    }
    const ConstImageView from(pixels.get(), held.width, held.height);
    if (held == decoded) {
        flattenOntoWhite(from, {pixels.get(), held.width, held.height});
        return pixels;
    }
    const std::size_t heldBytes = sampleCount(held.width, held.height, ImageView::kChannels);
    const std::size_t bytes = sampleCount(decoded.width, decoded.height, ImageView::kChannels);
    ImageBuffer flat(static_cast<unsigned char*>(std::malloc(bytes)));
    if (!flat) {
        ZEL_LOG_ERROR("%s(%d) new %d error.", "AlphaAdjust", __LINE__, static_cast<int>(bytes));
        return flat;
    }
    flattenOntoWhite(from, {flat.get(), held.width, held.height});
    std::memset(flat.get() + heldBytes, kOpaque, bytes - heldBytes);
    return flat;
}

}  // namespace zellab
