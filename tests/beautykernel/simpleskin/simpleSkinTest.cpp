#include <gtest/gtest.h>

#include "zel_effects/zel_effects.h"
#include "support/randomImage.h"

namespace {

using ZelImageCore::TableSkin;
using zeltest::Bytes;

Bytes flat(int width, int height, unsigned char red, unsigned char green, unsigned char blue) {
    Bytes pixels;
    for (int i = 0; i < width * height; ++i) pixels.insert(pixels.end(), {red, green, blue, 99});
    return pixels;
}

Bytes brightened(Bytes image, int width, int height, int radius, int level) {
    EXPECT_TRUE(TableSkin::ImageProcessWithBright(image.data(), width, height, radius, level));
    return image;
}

Bytes smoothed(Bytes image, int width, int height, int radius) {
    TableSkin::ImageProcessWithNatureSmooth(image.data(), width, height, radius);
    return image;
}

TEST(Bright, LevelIsLimitedAndZeroKeepsThePicture) {
    const Bytes image = zeltest::patternRgba(83, 61, 1);
    EXPECT_EQ(brightened(image, 83, 61, 7, 0), image);
    EXPECT_EQ(brightened(image, 83, 61, 7, -2), image);
    EXPECT_EQ(brightened(image, 83, 61, 7, 15), brightened(image, 83, 61, 7, 10));
    EXPECT_NE(brightened(image, 83, 61, 7, 10), brightened(image, 83, 61, 7, 9));
}

// Flat pictures, by hand. Black: light = 1, share 0.5 -> 0.5 -> 0.5 -> 0.5; the curve is 0 there. White:
// light is nearly 0 and share just below 0.5, and the curve keeps 255.
TEST(NatureSmooth, FlatPicturesFollowTheCurveByTheirGreen) {
    EXPECT_EQ(smoothed(flat(12, 9, 0, 0, 0), 12, 9, 2), flat(12, 9, 0, 0, 0));
    EXPECT_EQ(smoothed(flat(12, 9, 255, 255, 255), 12, 9, 2), flat(12, 9, 255, 255, 255));
    // Green alone steers: 2 (1 - g) + g - 1 = 1 - g, so the share is a half whatever the green is, and the
    // result lies half way to the curve: 64 -> (71 + 64) / 2, 12 -> (3 + 12) / 2.
    for (unsigned char green : {20, 128, 230}) {
        const Bytes result = smoothed(flat(12, 9, 64, green, 12), 12, 9, 2);
        EXPECT_EQ(result[0], 67);
        EXPECT_EQ(result[2], 7);
        EXPECT_EQ(result[3], 99);
    }
}

}  // namespace
