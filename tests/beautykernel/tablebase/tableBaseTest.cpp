#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "support/randomImage.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/colour/colorAdjust.h"

namespace {

using ZelImageCore::TableBase;
using zeltest::Bytes;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(ColorMixing, TheLiftRunsWithExactlyFourValues) {
    const Bytes before = zeltest::randomRgba(33, 60, 1);
    float params[5] = {0, 0, 0, 20, 0};
    Bytes lifted = before;
    zellab::LogBrightnessAdjust({lifted.data(), 33, 60}, 20);
    for (const auto& [count, expected] :
         std::vector<std::pair<int, const Bytes*>>{{2, &before}, {3, &before}, {4, &lifted}, {5, &before}}) {
        Bytes pixels = before;
        TableBase::ImageProcessWithColorMixing(pixels.data(), 33, 60, params, count);
        EXPECT_EQ(pixels, *expected) << count;
    }
}

TEST(ColorMixing, WildValuesAreContained) {
    const Bytes before = zeltest::randomRgba(20, 20, 2);
    for (float wild : {kNaN, kInfinity, -kInfinity, 3e38f, -1e10f}) {
        float params[4] = {wild, wild, wild, wild};
        Bytes pixels = before;
        TableBase::ImageProcessWithColorMixing(pixels.data(), 20, 20, params, 4);
        if (std::isnan(wild)) {
            EXPECT_EQ(pixels, before);
        }
        EXPECT_EQ(pixels[3], before[3]);
    }
}

TEST(Mosaic, OnePixelStays) {
    Bytes pixel = {1, 2, 3, 4};
    for (const int block : {INT_MIN, 9, INT_MAX})
        TableBase::ImageProcessWithMosaic(pixel.data(), 1, 1, block);
    EXPECT_EQ(pixel, (Bytes{1, 2, 3, 4}));
}

TEST(Sharp, GainsAndNeutralAmounts) {
    Bytes pixel = {100, 100, 250, 8}, blurred = {90, 110, 200, 77};
    unsigned char* copy = blurred.data();
    TableBase::ImageProcessWithSharp(pixel.data(), 1, 1, 0.25f, &copy);  // four times a quarter
    EXPECT_EQ(pixel, (Bytes{110, 90, 255, 8}));
    pixel = {100, 100, 250, 8};
    TableBase::ImageProcessWithSharp(pixel.data(), 1, 1, -0.5f, &copy);  // halfway to the copy
    EXPECT_EQ(pixel, (Bytes{95, 105, 225, 8}));
    const Bytes before = pixel;
    for (float amount : {0.0f, kNaN, kInfinity, -kInfinity})
        TableBase::ImageProcessWithSharp(pixel.data(), 1, 1, amount, &copy);
    EXPECT_EQ(pixel, before);
    TableBase::ImageProcessWithSharp(pixel.data(), 1, 1, 1e38f, &copy);  // no number left to truncate
}

/// A picture, a second one and a call of the mix with a mask of the region's size.
struct MixCase {
    static constexpr int kWidth = 40, kHeight = 55;
    Bytes before = zeltest::randomRgba(kWidth, kHeight, 1), source = zeltest::randomRgba(kWidth, kHeight, 2);
    Bytes pixels = before;

    void mix(Bytes mask, float left, float top, float width, float height, float radius, float strength) {
        float params[6] = {left, top, width, height, radius, strength};
        TableBase::ImageProcessWithAlphaMix(pixels.data(), kWidth, kHeight, source.data(), mask.data(),
                                            params);
    }
    /// The picture where the source shows inside the rectangle and nowhere else.
    Bytes sourceInside(int x0, int y0, int x1, int y1) const {
        Bytes expected = before;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x)
                for (int c = 0; c < 3; ++c) {
                    const auto i = static_cast<std::size_t>(4 * (y * kWidth + x) + c);
                    if (x >= x0 && x < x1 && y >= y0 && y < y1) expected[i] = source[i];
                }
        return expected;
    }
};

Bytes whiteMask(int width, int height) {
    return Bytes(static_cast<std::size_t>(4 * width * height), 255);
}

TEST(AlphaMix, FullMaskShowsTheSourceInsideTheRegionOnly) {
    MixCase inside;
    inside.mix(whiteMask(10, 20), 5, 7.9f, 10, 20, 0, 1);
    EXPECT_EQ(inside.pixels, inside.sourceInside(5, 7, 15, 27));
    MixCase blank;
    blank.mix(Bytes(4 * 10 * 20, 0), 5, 7, 10, 20, 3, 1);
    EXPECT_EQ(blank.pixels, blank.before);
}

TEST(AlphaMix, OverhangingRegionsTouchTheirPartInsideThePicture) {
    MixCase corner;
    corner.mix(whiteMask(30, 30), -10, -12, 30, 30, 0, 1);
    EXPECT_EQ(corner.pixels, corner.sourceInside(0, 0, 20, 18));
    MixCase around;
    around.mix(whiteMask(100, 100), -20, -20, 100, 100, 0, 1);
    EXPECT_EQ(around.pixels, around.source.size() ? around.sourceInside(0, 0, 40, 55) : Bytes{});
    for (const auto& [left, top] :
         std::vector<std::pair<float, float>>{{40, 0}, {0, 55}, {-4, 0}, {2e9f, -2e9f}, {-3e38f, 3e38f}}) {
        MixCase outside;
        outside.mix(whiteMask(4, 4), left, top, 4, 4, 0, 1);
        EXPECT_EQ(outside.pixels, outside.before) << left << ' ' << top;
    }
}

// The mask belongs to the region: its column k lies over the picture's column left + k, on either side of 0.
TEST(AlphaMix, MaskKeepsItsPlaceInTheRegion) {
    Bytes mask(4 * 8 * 8, 0);
    mask[4 * (6 * 8 + 5)] = 255;
    MixCase shifted;
    shifted.mix(mask, -3, -4, 8, 8, 0, 1);
    EXPECT_EQ(shifted.pixels, shifted.sourceInside(2, 2, 3, 3));
}

TEST(AlphaMix, BadInputLeavesThePicture) {
    for (int k = 0; k < 6; ++k)
        for (float wild : {kNaN, kInfinity}) {
            MixCase bad;
            float params[6] = {0, 0, 4, 4, 0, 1};
            params[k] = wild;
            Bytes mask = whiteMask(4, 4);
            TableBase::ImageProcessWithAlphaMix(bad.pixels.data(), 40, 55, bad.source.data(), mask.data(),
                                                params);
            EXPECT_EQ(bad.pixels, bad.before) << k;
        }
    MixCase bad;
    bad.mix(whiteMask(4, 4), 0, 0, 0, 4, 0, 1);
    bad.mix(whiteMask(4, 4), 0, 0, 4, -3, 0, 1);
    EXPECT_EQ(bad.pixels, bad.before);
    bad.mix(whiteMask(4, 4), 0, 0, 4, 4, -7, 1e30f);  // limited to bytes, no blur
}

}  // namespace
