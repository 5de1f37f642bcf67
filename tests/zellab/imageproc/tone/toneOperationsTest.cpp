#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "support/randomImage.h"
#include "zellab/imageproc/sharpen/unsharpMaskKernel.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace {

using zeltest::Bytes;

TEST(ToneTableBlendWarm, IsTheMirrorOfTheCoolOneAndNoNumberChangesNothing) {
    for (const float strength : {-1.0f, 0.3f, 1.0f, 1e30f, std::nanf("")}) {
        Bytes cool = zeltest::drawnRgba(256, 1, [](int x, int) { return std::array{x, x, x}; }), warm = cool;
        const Bytes before = cool;
        zellab::ToneTableBlend({cool.data(), 256, 1}, strength);
        zellab::ToneTableBlendWarm({warm.data(), 256, 1}, strength);
        for (std::size_t i = 0; i < warm.size(); ++i)
            ASSERT_EQ(warm[i], cool[i % 4 == 0 ? i + 2 : i % 4 == 2 ? i - 2 : i]) << i << ' ' << strength;
        EXPECT_EQ(cool == before, std::isnan(strength));
    }
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
    Bytes picture = zeltest::drawnRgba(10, 10, [](int, int) { return std::array{130, 130, 130}; });
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
