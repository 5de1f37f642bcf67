#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

/// Two pictures combined byte by byte. The operation is a small value with an always-inlined
/// `Byte operator()(int first, int second) const`; its loop is compiled for the baseline and for AVX2 from
/// the same lines, so that both give the same bytes.

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

template <int kChannels, typename Op>
ZEL_TARGET_AVX2 void combineRowAvx2(Byte* target, const Byte* first, const Byte* second, int width,
                                    const Op& op) {
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
