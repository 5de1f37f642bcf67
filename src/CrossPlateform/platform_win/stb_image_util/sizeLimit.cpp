#include "CrossPlateform/platform_win/stb_image_util/sizeLimit.h"

#include <libyuv.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "frame/zel_log.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

/// Fixed-point positions of the scaler have 16 fraction bits.
constexpr int kFractionBits = 16;

/// The filter of the size limit is one past the scaler's named ones. It blends two rows and two columns, with
/// the sampling positions of its unfiltered mode.
const auto kSizeLimitFilter = static_cast<libyuv::FilterMode>(4);

int rowBytes(int width) {
    return width * ImageView::kChannels;
}

bool scale(ConstImageView from, ImageView to) {
    return libyuv::ARGBScale(from.data, rowBytes(from.width), from.width, from.height, to.data,
                             rowBytes(to.width), to.width, to.height, kSizeLimitFilter) == 0;
}

bool isExactHalf(ConstImageView from, ImageView to) {
    return from.width == 2 * to.width && from.height == 2 * to.height;
}

/// Exactly half the size: target row j is made of source rows 2 j + 1 and 2 j + 2, the last of which lies
/// behind the picture. It is scaled apart, from a copy with the picture's last row repeated.
bool scaleToHalf(ConstImageView from, ImageView to) {
    const auto row = static_cast<std::size_t>(from.stride);
    std::vector<unsigned char> last(3 * row);
    for (std::size_t copy = 0; copy < 3; ++copy)
        std::memcpy(&last[copy * row], from.row(from.height - 1), row);

    const bool done = to.height == 1 || scale(from.crop(0, 0, from.width, from.height - 2),
                                              to.crop(0, 0, to.width, to.height - 1));
    return done && scale({last.data(), from.width, 2}, to.crop(0, to.height - 1, to.width, 1));
}

/// Where the last target column blends the last source column with the one behind it, the scaler takes
/// whatever its row buffer holds there. This writes that column again, from the last source column alone.
void mendLastColumn(ConstImageView from, ImageView to) {
    const auto step = [](int source, int target) {
        return (static_cast<std::int64_t>(source) << kFractionBits) / target;
    };
    const std::int64_t dx = step(from.width, to.width), dy = step(from.height, to.height);
    if ((dx / 2 + (to.width - 1) * dx) >> kFractionBits < from.width - 1) return;
    const std::int64_t yLast = static_cast<std::int64_t>(from.height - 1) << kFractionBits;
    for (int y = 0; y < to.height; ++y) {
        const std::int64_t position = std::min(dy / 2 + y * dy, yLast);
        const int above = static_cast<int>(position >> kFractionBits);
        const int below = std::min(above + 1, from.height - 1);
        const int share = static_cast<int>(position >> (kFractionBits - 8)) & 0xff;
        unsigned char* pixel = to.at(to.width - 1, y);
        libyuv::ARGBInterpolate(from.at(from.width - 1, above), rowBytes(1), from.at(from.width - 1, below),
                                rowBytes(1), pixel, rowBytes(1), 1, 1, share);
        // The scaler's two column weights add up to 127 of 128.
        for (int c = 0; c < ImageView::kChannels; ++c)
            pixel[c] = static_cast<unsigned char>(pixel[c] * 127 >> 7);
    }
}

bool isWholeStep(int source, int target) {
    return source % target == 0;
}

}  // namespace

bool scaleToLimit(ConstImageView from, ImageView to) {
    if (isExactHalf(from, to)) return scaleToHalf(from, to);
    if (!scale(from, to)) return false;
    if (!isWholeStep(from.width, to.width) || !isWholeStep(from.height, to.height)) mendLastColumn(from, to);
    return true;
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
