#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "support/randomImage.h"
#include "zellab/imageproc/sharpen/unsharpMaskKernel.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace {

using zeltest::Bytes;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

Bytes filled(int width, int height, std::array<unsigned char, 4> pixel) {
    Bytes bytes;
    for (int i = 0; i < width * height; ++i) bytes.insert(bytes.end(), pixel.begin(), pixel.end());
    return bytes;
}

/// The three results of a grey level under an operation on one pixel.
template <typename Operation>
std::array<int, 3> ofGrey(int level, const Operation& operation) {
    const auto v = static_cast<unsigned char>(level);
    unsigned char pixel[4] = {v, v, v, 200};
    operation(pixel);
    EXPECT_EQ(pixel[3], 200);
    return {pixel[0], pixel[1], pixel[2]};
}

TEST(ColorTemperatureBlend, CurvesRiseAndNeutralTouchesNothing) {
    for (char flag : {0, 1})
        for (float strength : {-1.0f, 0.3f, 1.0f}) {
            std::array<int, 3> before{-1, -1, -1};
            for (int level = 0; level < 256; ++level) {
                const auto now = ofGrey(level, [&](unsigned char* p) {
                    zellab::ColorTemperatureBlend({p, 1, 1}, strength, flag);
                });
                for (std::size_t c = 0; c < 3; ++c) ASSERT_GE(now[c], before[c]) << level << ' ' << strength;
                before = now;
            }
        }
    for (float strength : {0.5f, kNaN})
        for (int level : {0, 1, 99, 255})
            EXPECT_EQ(ofGrey(level,
                             [&](unsigned char* p) {
                                 zellab::ColorTemperatureBlend({p, 1, 1}, strength, 0);
                             }),
                      (std::array<int, 3>{level, level, level}));
}

TEST(ToneTableBlend, KneesAndTheirMirror) {
    const auto cool = [](float s) { return [s](unsigned char* p) { zellab::ToneTableBlend({p, 1, 1}, s); }; };
    const auto warm = [](float s) {
        return [s](unsigned char* p) { zellab::ToneTableBlendWarm({p, 1, 1}, s); };
    };
    EXPECT_EQ(ofGrey(128, cool(1)), (std::array<int, 3>{103, 138, 153}));
    EXPECT_EQ(ofGrey(128, warm(1)), (std::array<int, 3>{153, 138, 103}));
    EXPECT_EQ(ofGrey(128, cool(-1)), (std::array<int, 3>{153, 118, 103}));
    EXPECT_EQ(ofGrey(64, cool(0.5f)), (std::array<int, 3>{58, 66, 70}));  // 52, 69, 77 halfway
    for (float s : {0.0f, 1.0f, -1.0f}) {
        EXPECT_EQ(ofGrey(0, warm(s)), (std::array<int, 3>{0, 0, 0}));
        EXPECT_EQ(ofGrey(255, warm(s)), (std::array<int, 3>{255, 255, 255}));
    }
    EXPECT_EQ(ofGrey(77, cool(kNaN)), (std::array<int, 3>{77, 77, 77}));
    EXPECT_EQ(ofGrey(128, cool(1e30f)), (std::array<int, 3>{0, 255, 255}));
}

TEST(UnsharpMaskKernel, FixedPointFormAgreesAndKeepsOtherChannels) {
    const Bytes before = zeltest::randomRgba(37, 21, 1), blurred = zeltest::randomRgba(37, 21, 2);
    const zellab::UnsharpMaskKernel kernel(1.1f, 0.5f);  // a half is exact in both forms
    EXPECT_EQ(kernel.Weights().size(), 7u);
    Bytes all = before, some = before;
    kernel.Run({all.data(), 37, 21}, {blurred.data(), 37, 21});
    kernel.Run({some.data(), 37, 21}, {blurred.data(), 37, 21}, 5);
    for (std::size_t i = 0; i < before.size(); ++i)
        ASSERT_EQ(some[i], i % 4 == 0 || i % 4 == 2 ? all[i] : before[i]) << i;
}

TEST(AutoLevels, PlaneMaskAndRegion) {
    Bytes full(256,
               0);  // both ends are beyond the tails, so the stretch would be the identity but for rounding
    for (std::size_t i = 0; i < 256; ++i)
        full[i] = i < 8 ? 0 : i >= 248 ? 255 : static_cast<unsigned char>(i);
    const Bytes fullBefore = full;
    zellab::AutoLevels(zellab::PlaneView<unsigned char>(full.data(), 16, 16));
    EXPECT_EQ(full, fullBefore) << "a plane that spans everything stays";

    // Where the mask is below 255 pixels do not count, and they move by its share.
    Bytes picture = filled(10, 10, {130, 130, 130, 7});
    Bytes mask(100, 255);
    mask[0] = 0, mask[1] = 51;
    picture[0] = 255;
    zellab::AutoLevels(zellab::ImageView(picture.data(), 10, 10), nullptr, {mask.data(), 10, 10});
    EXPECT_EQ(picture[0], 255);
    EXPECT_EQ(picture[1], 130);
    EXPECT_EQ(picture[4], 130 + (127 - 130) * 51 / 255);
    EXPECT_EQ(picture[8], 127);
    const Bytes before = picture, nothing(100, 254);
    zellab::AutoLevels(zellab::ImageView(picture.data(), 10, 10), nullptr, {nothing.data(), 10, 10});
    EXPECT_EQ(picture, before) << "no pixel counts";

    // Dark left half, light right half: the mean of the region decides the lift.
    Bytes halves;
    for (int i = 0; i < 400; ++i) {
        const unsigned char v = i % 20 < 10 ? 45 : 240;
        halves.insert(halves.end(), {v, v, static_cast<unsigned char>(i % 2 ? v : 80), 0});
    }
    Bytes dark = halves, light = halves;
    const zellab::LevelsRegion left{-5, 19, 0, 9}, right{0, 1000, 10, 1000};
    zellab::AutoLevels(zellab::ImageView(dark.data(), 20, 20), &left);
    zellab::AutoLevels(zellab::ImageView(light.data(), 20, 20), &right);
    EXPECT_GT(dark[2], light[2]);
    EXPECT_EQ(dark[0], light[0]) << "black stays black";
}

}  // namespace
