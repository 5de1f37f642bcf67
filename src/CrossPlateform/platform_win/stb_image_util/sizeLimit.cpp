#include "CrossPlateform/platform_win/stb_image_util/sizeLimit.h"

#include <emmintrin.h>
#include <libyuv.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "frame/zel_log.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

/// Fixed-point positions of the scaler have 16 fraction bits.
constexpr int kFractionBits = 16;

/// The filter of the size limit is one past the scaler's named ones. It blends two rows and two columns, with
/// the sampling positions of its unfiltered mode.
const auto kSizeLimitFilter = static_cast<libyuv::FilterMode>(4);

/// The longest side that the scaler takes.
constexpr int kLongestSide = 32768;

int rowBytes(int width) {
    return width * ImageView::kChannels;
}

/// The scaler itself, for whole steps alone: for others it takes memory without a look at whether it got any.
/// Rows of `from` are `stride` bytes apart.
bool scaleWholeSteps(ConstImageView from, int stride, ImageView to) {
    return libyuv::ARGBScale(from.data, stride, from.width, from.height, to.data, rowBytes(to.width),
                             to.width, to.height, kSizeLimitFilter) == 0;
}

bool isExactHalf(ConstImageView from, ImageView to) {
    return from.width == 2 * to.width && from.height == 2 * to.height;
}

/// Exactly half the size: target row j is made of source rows 2 j + 1 and 2 j + 2, the last of which lies
/// behind the picture. It is scaled apart, from the picture's last row over and over.
bool scaleToHalf(ConstImageView from, ImageView to) {
    const bool done =
        to.height == 1 || scaleWholeSteps(from.crop(0, 0, from.width, from.height - 2), rowBytes(from.width),
                                          to.crop(0, 0, to.width, to.height - 1));
    return done && scaleWholeSteps({from.row(from.height - 1), from.width, 2}, 0,
                                   to.crop(0, to.height - 1, to.width, 1));
}

/// Whole steps in both directions, both even or both odd: the scaler then goes straight from row to row.
bool isScaledStraight(ConstImageView from, ImageView to) {
    if (from.width % to.width != 0 || from.height % to.height != 0) return false;
    return from.width / to.width % 2 == from.height / to.height % 2;
}

/// A pixel and the one behind it in 1/128, with weights that add up to 127.
int blendColumns(const std::uint32_t* pair, std::uint32_t share) {
    const __m128i pixels = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pair));
    const __m128i channels = _mm_unpacklo_epi8(pixels, _mm_srli_si128(pixels, ImageView::kChannels));
    const __m128i weights = _mm_set1_epi32(static_cast<int>(share << 16 | (127 - share)));
    const __m128i sums =
        _mm_srli_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(channels, _mm_setzero_si128()), weights), 7);
    const __m128i blended = _mm_packs_epi32(sums, sums);
    return _mm_cvtsi128_si32(_mm_packus_epi16(blended, blended));
}

/// Every step that is not straight: positions of a point sampler in 16.16, rows blended in 1/256 with
/// rounding, then columns. Behind the last row and the last column they repeat.
bool blendToLimit(ConstImageView from, ImageView to) {
    const auto width = static_cast<std::size_t>(from.width);
    const std::unique_ptr<std::uint32_t[]> row(new (std::nothrow) std::uint32_t[width + 1]);
    if (!row) return false;
    const auto step = [](int source, int target) {
        return (static_cast<std::int64_t>(source) << kFractionBits) / target;
    };
    const std::int64_t dx = step(from.width, to.width), dy = step(from.height, to.height);
    const std::int64_t yLast = static_cast<std::int64_t>(from.height - 1) << kFractionBits;
    for (int y = 0; y < to.height; ++y) {
        const std::int64_t position = std::min(dy / 2 + y * dy, yLast);
        const int above = static_cast<int>(position >> kFractionBits);
        const int below = std::min(above + 1, from.height - 1);
        const int share = static_cast<int>(position >> (kFractionBits - 8)) & 0xff;
        libyuv::ARGBInterpolate(from.row(above), rowBytes(from.width), from.row(below), rowBytes(from.width),
                                reinterpret_cast<unsigned char*>(row.get()), rowBytes(from.width), from.width,
                                1, share);
        row[width] = row[width - 1];
        unsigned char* pixel = to.row(y);
        auto x = static_cast<std::uint32_t>(dx / 2);
        for (int i = 0; i < to.width; ++i, pixel += ImageView::kChannels) {
            const int blended =
                blendColumns(row.get() + (x >> kFractionBits), x >> (kFractionBits - 7) & 0x7f);
            std::memcpy(pixel, &blended, sizeof blended);
            x += static_cast<std::uint32_t>(dx);
        }
    }
    return true;
}

}  // namespace

bool scaleToLimit(ConstImageView from, ImageView to) {
    if (std::max(from.width, from.height) > kLongestSide) return false;
    if (isExactHalf(from, to)) return scaleToHalf(from, to);
    if (isScaledStraight(from, to)) return scaleWholeSteps(from, rowBytes(from.width), to);
    return blendToLimit(from, to);
}

ImageSize limitedSize(ImageSize size, int maxSize) {
    const auto shorter = [maxSize](int side, int longer) {
        return static_cast<int>(static_cast<std::int64_t>(side) * maxSize / longer);
    };
    if (maxSize >= size.width && maxSize >= size.height) return size;
    if (size.width > size.height) return {maxSize, shorter(size.height, size.width)};
    return {shorter(size.width, size.height), maxSize};
}

ImageSize maxSizeAdjust(ImageBuffer& pixels, ImageSize size, int maxSize) {
    if (!pixels || size.width <= 0 || size.height <= 0) {
        ZEL_LOG_ERROR("%s(%d) param error.", "MaxSizeAdjust", __LINE__);
        return size;
    }
    if (maxSize < 1) return size;
    const ImageSize reduced = limitedSize(size, maxSize);
    if (reduced == size) return size;

    const std::size_t bytes = sampleCount(reduced.width, reduced.height, ImageView::kChannels);
    // At least one byte, so that a picture reduced to nothing is told from a failing allocation.
    ImageBuffer scaled(static_cast<unsigned char*>(std::malloc(std::max<std::size_t>(bytes, 1))));
    if (!scaled) {
        ZEL_LOG_ERROR("%s(%d) new %d error.", "MaxSizeAdjust", __LINE__, static_cast<int>(bytes));
        return size;
    }
    if (bytes > 0 && !scaleToLimit({pixels.get(), size.width, size.height},
                                   {scaled.get(), reduced.width, reduced.height})) {
        ZEL_LOG_ERROR("%s(%d) scale %d x %d error.", "MaxSizeAdjust", __LINE__, size.width, size.height);
        return size;
    }
    pixels = std::move(scaled);
    return reduced;
}

}  // namespace zellab
