#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "platform/simdLevel.h"
#include "support/randomImage.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/colour/yCbCr.h"

namespace {

using zellab::platform::SimdLevel;
using zellab::platform::SimdLimit;
using zeltest::Bytes;

/// A cube whose texel at each step is its own position, or that position seen through `change`.
template <typename Change>
Bytes cubeOf(int steps, int tiles, const Change& change) {
    const int side = steps * tiles;
    Bytes cube(static_cast<std::size_t>(4 * side * side), 255);
    for (int b = 0; b < steps; ++b)
        for (int g = 0; g < steps; ++g)
            for (int r = 0; r < steps; ++r) {
                const int x = b % tiles * steps + r, y = b / tiles * steps + g;
                const std::array<int, 3> colour =
                    change(r * 255 / (steps - 1), g * 255 / (steps - 1), b * 255 / (steps - 1));
                for (std::size_t c = 0; c < 3; ++c)
                    cube[static_cast<std::size_t>(4 * (y * side + x)) + c] =
                        static_cast<unsigned char>(colour[c]);
            }
    return cube;
}

constexpr auto kIdentity = [](int r, int g, int b) { return std::array<int, 3>{r, g, b}; };

struct CubeForm {
    const char* name;
    int steps, tiles;
    void (*apply)(zellab::ImageView, const unsigned char*);
};

class ColorCube : public testing::TestWithParam<CubeForm> {};

TEST_P(ColorCube, IdentityStaysWithinOneStepAndCornersAreExact) {
    const CubeForm& form = GetParam();
    const Bytes cube = cubeOf(form.steps, form.tiles, kIdentity);
    Bytes pixels = zeltest::randomRgba(200, 100, 3);
    for (std::size_t k = 0; k < 8; ++k)
        for (std::size_t c = 0; c < 3; ++c) pixels[4 * k + c] = k >> c & 1 ? 255 : 0;
    const Bytes before = pixels;
    form.apply({pixels.data(), 200, 100}, cube.data());
    for (std::size_t i = 0; i < pixels.size(); ++i)
        ASSERT_NEAR(pixels[i], before[i], i % 4 == 3 || i < 32 ? 0 : 1) << i;
}

// The three axes told apart, so that a swap of axes or tiles shows.
TEST_P(ColorCube, EachAxisLeadsToItsOwnPlace) {
    const CubeForm& form = GetParam();
    const Bytes cube = cubeOf(form.steps, form.tiles, [](int r, int g, int b) {
        return std::array<int, 3>{g, b / 2, 255 - r};
    });
    Bytes pixels = zeltest::randomRgba(100, 100, 4);
    const Bytes before = pixels;
    form.apply({pixels.data(), 100, 100}, cube.data());
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        ASSERT_NEAR(pixels[i], before[i + 1], 1);
        ASSERT_NEAR(pixels[i + 1], before[i + 2] / 2, 1);
        ASSERT_NEAR(pixels[i + 2], 255 - before[i], 1);
    }
}

TEST_P(ColorCube, ReadsInsideTheCubeAndIgnoresNoPicture) {
    const CubeForm& form = GetParam();
    const int side = form.steps * form.tiles;
    const Bytes cube(static_cast<std::size_t>(4 * side * side), 91);  // exact size: sanitizers watch the ends
    Bytes pixels(4 * 300, 255);
    form.apply({pixels.data(), 300, 1}, cube.data());
    EXPECT_EQ(pixels[0], 91);
    const Bytes before = pixels;
    form.apply({pixels.data(), 300, 1}, nullptr);
    form.apply({}, cube.data());
    EXPECT_EQ(pixels, before);
}

INSTANTIATE_TEST_SUITE_P(Forms, ColorCube,
                         testing::Values(CubeForm{"Steps16", 16, 4, zellab::ApplyColorCube},
                                         CubeForm{"Steps64", 64, 8, zellab::ApplyColorCube64}),
                         [](const auto& form) { return form.param.name; });

// Extreme cubes drive the 16-bit steps of the vector form to their limits.
TEST(ColorCubeSimd, SameBytesOnEveryLevelForRandomAndExtremeCubes) {
    const Bytes pixels = zeltest::randomRgba(257, 200, 9);
    for (unsigned seed = 0; seed < 4; ++seed) {
        Bytes cube = zeltest::randomRgba(64, 64, seed);
        if (seed % 2)
            for (auto& byte : cube) byte = byte < 128 ? 0 : 255;
        Bytes best = pixels, baseline = pixels;
        zellab::ApplyColorCube({best.data(), 257, 200}, cube.data());
        const SimdLimit limit(SimdLevel::baseline);
        zellab::ApplyColorCube({baseline.data(), 257, 200}, cube.data());
        ASSERT_EQ(best, baseline) << seed;
    }
}

TEST(YCbCr, GreyHasNeutralChromaAndColoursComeBack) {
    for (int i = 0; i < 256; ++i) {
        const auto v = static_cast<unsigned char>(i);
        unsigned char y, cb, cr;
        zellab::RGBToYCbCr(&v, &v, &v, &y, &cb, &cr);
        ASSERT_EQ(y, v);
        ASSERT_EQ(cb, 128);
        ASSERT_EQ(cr, 128);
    }
    const Bytes pixels = zeltest::randomRgba(64, 64, 2);
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        unsigned char y, cb, cr, back[3];
        zellab::RGBToYCbCr(&pixels[i], &pixels[i + 1], &pixels[i + 2], &y, &cb, &cr);
        zellab::YCbCrToRGB(&y, &cb, &cr, back, back + 1, back + 2);
        for (std::size_t c = 0; c < 3; ++c) ASSERT_NEAR(back[c], pixels[i + c], 2);
    }
    const unsigned char white = 255, none = 0;
    unsigned char r, g, b;
    zellab::YCbCrToRGB(&white, &white, &none, &r, &g, &b);
    EXPECT_EQ(r, 76) << "255 - 179.45";
    EXPECT_EQ(b, 255);
}

}  // namespace
