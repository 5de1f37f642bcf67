// TableBase::ImageProcessWithMosaic: blocks of one colour.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

constexpr std::uint32_t kAlphaMask = 0xff000000u;

/// The truncated mean of a block's colours, as a pixel without alpha. Sums are whole numbers, so that the
/// integer quotient is what truncating the quotient in floating point gives.
std::uint32_t meanColour(ConstImageView block) {
    std::uint64_t sums[3] = {};
    for (int y = 0; y < block.height; ++y) {
        const Byte* pixel = block.row(y);
        std::uint64_t r = 0, g = 0, b = 0;
        for (int x = 0; x < block.width; ++x, pixel += 4) r += pixel[0], g += pixel[1], b += pixel[2];
        sums[0] += r, sums[1] += g, sums[2] += b;
    }
    const std::uint64_t count = sampleCount(block.width, block.height);
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): a block has at least one pixel
    return static_cast<std::uint32_t>(sums[0] / count | sums[1] / count << 8 | sums[2] / count << 16);
}

void fillColour(ImageView block, std::uint32_t colour) {
    for (int y = 0; y < block.height; ++y) {
        Byte* pixel = block.row(y);
        for (int x = 0; x < block.width; ++x, pixel += 4) {
            std::uint32_t value;
            std::memcpy(&value, pixel, 4);
            value = (value & kAlphaMask) | colour;
            std::memcpy(pixel, &value, 4);
        }
    }
}

/// Blocks are independent: each is read whole before it is written, so no copy of the picture is needed.
void mosaic(ImageView image, int block) {
    const int rows = (image.height - 1) / block + 1;
    runTasks(rows, rowWorkers(image.height), [&](int row) {
        const int y = row * block, height = std::min(block, image.height - y);
        for (int x = 0; x < image.width; x += block) {
            const ImageView part = image.crop(x, y, std::min(block, image.width - x), height);
            fillColour(part, meanColour(part));
        }
    });
}

}  // namespace

}  // namespace zellab

namespace ZelImageCore {

void TableBase::ImageProcessWithMosaic(unsigned char* image, int width, int height, int blockSize) {
    constexpr int kLeastBlock = 2;
    const zellab::ImageView view(image, width, height);
    if (!view.valid()) return;
    // A block larger than the picture is the picture; the limit keeps its steps within the type.
    const int largest = std::max({width, height, kLeastBlock});
    zellab::mosaic(view, std::clamp(blockSize, kLeastBlock, largest));
}

}  // namespace ZelImageCore
