#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"

#include <array>
#include <cstring>

#include "frame/zel_log.h"
#include "zellab/imageproc/parallelRows.h"

namespace zellab {

namespace {

constexpr unsigned char kOpaque = 255;

/// How one alpha mixes a byte with white: byte * share + white.
struct AlphaMix {
    float share, white;
};

/// Divisions and products in double precision; the two results are single.
constexpr std::array<AlphaMix, 256> buildAlphaMixes() {
    std::array<AlphaMix, 256> mixes{};
    for (int alpha = 0; alpha < 256; ++alpha) {
        const auto share = static_cast<float>(alpha / 255.0);
        const auto white = static_cast<float>(static_cast<int>((1.0 - share) * 255.0));
        mixes[static_cast<std::size_t>(alpha)] = {share, white};
    }
    return mixes;
}
constexpr auto kAlphaMixes = buildAlphaMixes();

void flattenRow(const unsigned char* from, unsigned char* to, int width) {
    for (int x = 0; x < width; ++x, from += ImageView::kChannels, to += ImageView::kChannels) {
        const AlphaMix mix = kAlphaMixes[from[3]];
        for (int c = 0; c < 3; ++c)
            to[c] = static_cast<unsigned char>(
                static_cast<int>(static_cast<float>(from[c]) * mix.share + mix.white));
        to[3] = kOpaque;
    }
}

}  // namespace

void flattenOntoWhite(ConstImageView from, ImageView to) {
    parallelRows(from.height, [=](int yBegin, int yEnd) {
        for (int y = yBegin; y < yEnd; ++y) flattenRow(from.row(y), to.row(y), from.width);
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
