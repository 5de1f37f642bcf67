#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "frame/processorCount.h"
#include "support/randomImage.h"

using zellab::ImageBuffer;
using zellab::ImageSize;
using zeltest::Bytes;

namespace {

ImageBuffer bufferOf(const Bytes& bytes) {
    ImageBuffer buffer(static_cast<unsigned char*>(std::malloc(bytes.size())));
    std::copy(bytes.begin(), bytes.end(), buffer.get());
    return buffer;
}

Bytes flattened(const Bytes& rgba, ImageSize size) {
    const ImageBuffer flat = zellab::alphaAdjust(bufferOf(rgba), size, size);
    return Bytes(flat.get(), flat.get() + rgba.size());
}

// Every value under every alpha, in the documented steps: share in single precision from a division in
// double, white truncated before the sum, the sum in single precision truncated once more.
TEST(AlphaFlatten, MatchesTheArithmeticForAllValuesAndAlphas) {
    Bytes pixels;
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int value = 0; value < 256; ++value)
            for (int byte : {value, 255 - value, value ^ 0x55, alpha})
                pixels.push_back(static_cast<unsigned char>(byte));
    for (int workers : {1, 3}) {
        const zellab::WorkerCount count(workers);
        const Bytes flat = flattened(pixels, {256, 256});
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const auto share = static_cast<float>(static_cast<double>(pixels[i | 3]) / 255.0);
            const auto white =
                static_cast<double>(static_cast<int>((1.0 - static_cast<double>(share)) * 255.0));
            const float product = static_cast<float>(pixels[i]) * share;
            const float sum = product + static_cast<float>(white);
            ASSERT_EQ(flat[i], i % 4 == 3 ? 255 : static_cast<int>(sum))
                << int(pixels[i]) << " under alpha " << int(pixels[i | 3]);
        }
    }
}

// The host was told the decoded size: the buffer is that large, and what the picture does not fill is white.
TEST(AlphaFlatten, AReducedPictureIsFollowedByWhiteUpToTheDecodedSize) {
    const Bytes reduced = zeltest::randomRgba(7, 3, 11);
    const Bytes alone = flattened(reduced, {7, 3});
    const ImageBuffer flat = zellab::alphaAdjust(bufferOf(reduced), {70, 30}, {7, 3});
    EXPECT_EQ(Bytes(flat.get(), flat.get() + alone.size()), alone);
    EXPECT_TRUE(std::all_of(flat.get() + alone.size(), flat.get() + 70 * 30 * 4,
                            [](unsigned char b) { return b == 255; }));
    const ImageBuffer nothing = zellab::alphaAdjust(bufferOf({1}), {1, 500}, {0, 10});
    EXPECT_EQ(Bytes(nothing.get(), nothing.get() + 2000), Bytes(2000, 255));
}

}  // namespace
