#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/randomImage.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/colour/colorAdjust.h"

namespace {

using ZelImageCore::TableBase;
using zeltest::Bytes;

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

TEST(AlphaMix, ANumberThatIsNoneLeavesThePicture) {
    for (int k = 0; k < 6; ++k)
        for (float wild : {NAN, INFINITY}) {
            MixCase bad;
            float params[6] = {0, 0, 4, 4, 0, 1};
            params[k] = wild;
            bad.mix(whiteMask(4, 4), params[0], params[1], params[2], params[3], params[4], params[5]);
            EXPECT_EQ(bad.pixels, bad.before) << k;
        }
}

}  // namespace
