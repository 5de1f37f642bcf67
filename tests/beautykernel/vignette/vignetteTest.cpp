#include "beautykernel/vignette/vignette.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference/slowVignette.h"
#include "support/everyMachine.h"

namespace {

using zellab::ImageView;
using zellab::VignetteParams;
using zeltest::Bytes;
using zeltest::Size;

TEST(VignetteMatchesSlow, OnAwkwardSizes) {
    for (const Size size : zeltest::kAwkwardSizes) {
        const Bytes picture = zeltest::randomRgba(size.width, size.height, 61);
        for (const VignetteParams& params :
             {VignetteParams{0, 0, 0}, {1, 0, 1}, {0.5f, 0.4f, 0.6f}, {0.8f, 0.7f, 0}, {1, 1, 0.3f}}) {
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", " << params.strength
                                            << ' ' << params.radius << ' ' << params.softness);
            Bytes expected = picture;
            slow::vignette(expected, size.width, size.height, params.strength, params.radius,
                           params.softness);
            zeltest::onEveryMachine([&] {
                Bytes actual = picture;
                zellab::vignette(ImageView(actual.data(), size.width, size.height), params);
                EXPECT_TRUE(actual == expected);
            });
            ASSERT_FALSE(HasFailure());
        }
    }
}

// By hand, on white of 40 by 20: the centre stays, the corners are wholly outside, each quarter mirrors the others.
TEST(Vignette, DarkensFromTheCentreToTheCornersAlike) {
    constexpr int kWidth = 40, kHeight = 20;
    Bytes bytes(kWidth * kHeight * 4, 255);
    const ImageView image(bytes.data(), kWidth, kHeight);
    zellab::vignette(image, {1, 0.25f, 0.5f});
    EXPECT_EQ(*image.at(20, 10), 255);
    EXPECT_EQ(*image.at(0, 0), 0);
    EXPECT_EQ(image.at(0, 0)[3], 255) << "alpha";
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            ASSERT_EQ(*image.at(x, y), *image.at(kWidth - 1 - x, y));
            ASSERT_EQ(*image.at(x, y), *image.at(x, kHeight - 1 - y));
            if (x >= kWidth / 2) {
                ASSERT_LE(*image.at(x, y), *image.at(x - 1, y)) << "no ring";
            }
        }
    // The middle of the right side is nearer than the corner: 0.975 / sqrt(2) = 0.689 is t = 0.879, s = 0.960.
    EXPECT_NEAR(*image.at(39, 10), 255 * (1 - 0.960), 1);
}

TEST(Vignette, WithoutStrengthOrWithoutSenseChangesNothing) {
    const Bytes picture = zeltest::randomRgba(30, 20, 62);
    Bytes bytes = picture;
    const ImageView image(bytes.data(), 30, 20);
    for (const VignetteParams& params :
         {VignetteParams{0, 0, 1}, {std::nanf(""), 0, 1}, {1, -0.1f, 1}, {1, 0, 1.5f}, {INFINITY, 0, 1}})
        zellab::vignette(image, params);
    zellab::vignette({nullptr, 30, 20}, {1, 0, 1});
    zellab::vignette({bytes.data(), 0, 20}, {1, 0, 1});
    EXPECT_EQ(bytes, picture);
}

// A view on a part of a picture leaves what lies around it.
TEST(Vignette, StaysWithinItsView) {
    const Bytes picture = zeltest::randomRgba(24, 18, 63);
    Bytes bytes = picture, part;
    const ImageView image(bytes.data(), 24, 18), inner = image.crop(5, 3, 13, 9);
    for (int y = 0; y < 9; ++y) part.insert(part.end(), inner.row(y), inner.row(y) + 13 * 4);
    zellab::vignette(inner, {1, 0, 0.8f});
    slow::vignette(part, 13, 9, 1, 0, 0.8f);
    for (int y = 0; y < 18; ++y)
        for (int x = 0; x < 24; ++x) {
            const bool within = x >= 5 && x < 18 && y >= 3 && y < 12;
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(image.at(x, y)[c],
                          within ? part[static_cast<std::size_t>((y - 3) * 52 + (x - 5) * 4 + c)]
                                 : picture[static_cast<std::size_t>(y * 96 + x * 4 + c)]);
        }
}

}  // namespace
