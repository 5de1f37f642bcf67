#pragma once

#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

/// Two pictures combined byte by byte. The operation is a small value with an always-inlined
/// `Byte operator()(int first, int second) const`; its loop is compiled for the baseline and for AVX2 from
/// the same lines, so that both give the same bytes. An operation in single precision may have `wide` beside it:
/// eight samples of either picture, as floats, to eight results before they are cut off and limited.

namespace zellab {

/// Bytes that the vectorised loop works on at once; long enough to fill the registers, short enough to stay
/// in the nearest cache.
inline constexpr int kCombineBytes = 128;

/// Writes `colours` over `pixels` without their alpha.
[[gnu::always_inline]] inline void storeColours(Byte* pixels, const Byte* colours, int count) {
    for (int i = 0; i < count; ++i) {
        Byte* const pixel = pixels + std::ptrdiff_t{4} * i;
        std::uint32_t kept, fresh;
        std::memcpy(&kept, pixel, 4);
        std::memcpy(&fresh, colours + std::ptrdiff_t{4} * i, 4);
        fresh = (fresh & 0x00ffffffu) | (kept & 0xff000000u);
        std::memcpy(pixel, &fresh, 4);
    }
}

template <int kChannels, typename Op>
[[gnu::always_inline]] inline void combineRow(Byte* target, const Byte* first, const Byte* second, int width,
                                              const Op& op) {
    static_assert(kChannels == 1 || kChannels == 4);
    std::ptrdiff_t left = std::ptrdiff_t{kChannels} * width;
    while (left > 0) {
        const int count = static_cast<int>(std::min<std::ptrdiff_t>(left, kCombineBytes));
        alignas(32) Byte result[kCombineBytes];
        if (count == kCombineBytes)
            for (int i = 0; i < kCombineBytes; ++i) result[i] = op(first[i], second[i]);
        else
            for (int i = 0; i < count; ++i) result[i] = op(first[i], second[i]);
        if (kChannels == 1)
            std::memcpy(target, result, static_cast<std::size_t>(count));
        else
            storeColours(target, result, count / 4);
        target += count, first += count, second += count, left -= count;
    }
}

template <int kChannels, typename Op>
void combineRowPlain(Byte* target, const Byte* first, const Byte* second, int width, const Op& op) {
    combineRow<kChannels>(target, first, second, width, op);
}

template <typename Op>
concept WideOperation = requires(const Op& op, __m256 eight) {
    op.wide(eight, eight);
};

ZEL_TARGET_AVX2 inline __m256 eightFloats(const Byte* bytes) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes))));
}

/// Pixels in groups of eight; returns how many were done. The results lie in the range of int.
template <WideOperation Op>
ZEL_TARGET_AVX2 int combineWide(Byte* target, const Byte* first, const Byte* second, int width,
                                const Op& op) {
    // The packs work half by half; this puts the groups of four bytes back in a row.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    const __m256i alpha = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const std::ptrdiff_t at = std::ptrdiff_t{4} * x;
        __m256i whole[4];
        for (int k = 0; k < 4; ++k)
            whole[k] = _mm256_cvttps_epi32(
                op.wide(eightFloats(first + at + 8 * k), eightFloats(second + at + 8 * k)));
        const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(whole[0], whole[1]),
                                                   _mm256_packs_epi32(whole[2], whole[3]));
        auto* const to = reinterpret_cast<__m256i*>(target + at);
        const __m256i colours = _mm256_permutevar8x32_epi32(packed, order);
        _mm256_storeu_si256(to, _mm256_blendv_epi8(colours, _mm256_loadu_si256(to), alpha));
    }
    return x;
}

template <int kChannels, typename Op>
ZEL_TARGET_AVX2 void combineRowAvx2(Byte* target, const Byte* first, const Byte* second, int width,
                                    const Op& op) {
    if constexpr (kChannels == 4 && WideOperation<Op>) {
        const int done = combineWide(target, first, second, width, op);
        const std::ptrdiff_t at = std::ptrdiff_t{4} * done;
        target += at, first += at, second += at, width -= done;
    }
    combineRow<kChannels>(target, first, second, width, op);
}

/// The loop over one row, or a part of it: row(target, first, second, width, op), as fast as this machine
/// allows.
template <int kChannels, typename Op>
auto combineRowFor() {
    return platform::pick(platform::simdLevel(), combineRowPlain<kChannels, Op>,
                          combineRowAvx2<kChannels, Op>);
}

/// target = op(first, second) for bytes 0 to 2 of each pixel; alpha of `target` stays. The views have the
/// same size; `target` may be the same picture as either source.
template <typename Op>
void combinePixels(ImageView target, ConstImageView first, ConstImageView second, const Op& op) {
    const auto row = combineRowFor<4, Op>();
    parallelRows(target.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) row(target.row(y), first.row(y), second.row(y), target.width, op);
    });
}

/// The same for planes.
template <typename Op>
void combinePlanes(PlaneView<Byte> target, PlaneView<const Byte> first, PlaneView<const Byte> second,
                   const Op& op) {
    const auto row = combineRowFor<1, Op>();
    parallelRows(target.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) row(target.row(y), first.row(y), second.row(y), target.width, op);
    });
}

}  // namespace zellab
