#include "libzel/effects/blockEdges.h"

#include <gtest/gtest.h>

#include <cmath>

#include "effectSupport.h"

namespace {

using zel::Image;

constexpr int kWidth = 84, kHeight = 68;  // the last blocks are cut

/// A slope of every colour with a dark bar down its middle.
Image slope() {
    const auto colour = [](int x, int y) {
        return x >= 42 && x < 46 ? std::array{20, 20, 20}
                                 : std::array{90 + x + y / 2, 80 + x / 2 + y, 70 + x / 2 + y / 2};
    };
    return {kWidth, kHeight, zeltest::drawnRgba(kWidth, kHeight, colour)};
}

/// What the coarsest JPEG file leaves of it: each block in its own mean colour, but for the bar.
Image inBlocks(const Image& image, int offsetX, int offsetY) {
    Image blocks = image;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            if (x >= 42 && x < 46) continue;
            const auto middle = [](int at, int offset, int size) {
                const int begin = static_cast<int>(std::floor((at - offset) / 8.0)) * 8 + offset;
                return std::min(std::max(begin + 3, 0), size - 1);
            };
            const int mx = middle(x, offsetX, kWidth), my = middle(y, offsetY, kHeight);
            if (mx >= 42 && mx < 46) continue;
            for (std::size_t c = 0; c < 3; ++c)
                blocks.rgba[static_cast<std::size_t>(y * kWidth + x) * 4 + c] =
                    image.rgba[static_cast<std::size_t>(my * kWidth + mx) * 4 + c];
        }
    return blocks;
}

// A turned picture has its cut blocks at the first pixels instead of the last.
TEST(BlockEdges, BecomeSlopesAndTheBarStays) {
    const Image truth = slope();
    for (const auto& [x, y] : {std::pair{0, 0}, {kWidth % 8, kHeight % 8}, {0, kHeight % 8}}) {
        SCOPED_TRACE(testing::Message() << x << ", " << y);
        const Image before = inBlocks(truth, x, y);
        Image after = before;
        softenBlockEdges(after);
        EXPECT_GT(blockiness(before), 3);
        EXPECT_LT(blockiness(after), blockiness(before) / 2);
        EXPECT_LT(zeltest::differenceOf(after.rgba, truth.rgba).mean,
                  zeltest::differenceOf(before.rgba, truth.rgba).mean * 0.8);
        for (int row = 0; row < kHeight; ++row)
            for (int column = 42; column < 46; ++column) {
                const auto i = static_cast<std::size_t>(row * kWidth + column) * 4;
                for (std::size_t c = 0; c < 4; ++c) ASSERT_EQ(after.rgba[i + c], truth.rgba[i + c]);
            }
    }
}

/// The mean step of luma before pixels whose place within blocks of eight is `offset`, less that before the others.
double plainExcess(const Image& image, bool rows, int offset) {
    double sums[2] = {}, counts[2] = {};
    const auto luma = [&](int x, int y) {
        const unsigned char* p = image.rgba.data() + (static_cast<std::ptrdiff_t>(y) * image.width + x) * 4;
        return (77 * p[0] + 150 * p[1] + 29 * p[2]) >> 8;
    };
    for (int y = rows ? 0 : 1; y < image.height; ++y)
        for (int x = rows ? 1 : 0; x < image.width; ++x) {
            const int before = rows ? luma(x - 1, y) : luma(x, y - 1);
            const int border = ((rows ? x : y) - offset) % 8 == 0;
            sums[border] += std::abs(luma(x, y) - before);
            ++counts[border];
        }
    return sums[1] / counts[1] - sums[0] / counts[0];
}

TEST(BlockEdges, ShowAsTheMeanStepAtTheBordersBeyondThatInside) {
    for (const auto& [width, height] : {std::pair{16, 16}, {17, 24}, {31, 19}, {101, 77}}) {
        const Image image = zeltest::testImage(width, height, 7);
        const auto stronger = [&image = image](bool rows, int length) {
            return std::max(plainExcess(image, rows, 0), plainExcess(image, rows, length % 8));
        };
        EXPECT_EQ(blockiness(image), (stronger(true, width) + stronger(false, height)) / 2) << width;
    }
}

TEST(BlockEdges, PicturesWithoutBlocksKeepEveryByte) {
    for (const Image& image : {slope(), zeltest::testImage(101, 77, 9), zeltest::testImage(9, 400, 4)}) {
        Image after = image;
        softenBlockEdges(after);
        EXPECT_EQ(after.rgba, image.rgba);
    }
}

}  // namespace
