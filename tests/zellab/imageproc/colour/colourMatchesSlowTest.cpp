#include <gtest/gtest.h>

#include "reference/slowColour.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/colour/colorAdjust.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/colour/yCbCr.h"

namespace {

using slow::Rgb;
using slow::YCbCr;
using namespace zeltest;

unsigned char byte(int value) {
    return static_cast<unsigned char>(value);
}

// Every third value of each channel, both ends among them; the grey axis whole.
TEST(YCbCrMatchesSlow, OnOnePixelBothWays) {
    const auto compare = [](int a, int b, int c) {
        const unsigned char in[3] = {byte(a), byte(b), byte(c)};
        unsigned char out[3], luma;
        zellab::RGBToYCbCr(in, in + 1, in + 2, out, out + 1, out + 2);
        ASSERT_EQ(slow::toYCbCr({a, b, c}), (YCbCr{out[0], out[1], out[2]})) << a << ' ' << b << ' ' << c;
        zellab::RGBToLuma(in, in + 1, in + 2, &luma);
        ASSERT_EQ(slow::toYCbCr({a, b, c}).y, luma) << a << ' ' << b << ' ' << c;
        zellab::YCbCrToRGB(in, in + 1, in + 2, out, out + 1, out + 2);
        ASSERT_EQ(slow::toRgb({a, b, c}), (Rgb{out[0], out[1], out[2]})) << a << ' ' << b << ' ' << c;
    };
    for (int a = 0; a < 256; a += 3)
        for (int b = 0; b < 256; b += 3)
            for (int c = 0; c < 256 && !HasFailure(); c += 3) compare(a, b, c);
    for (int a = 0; a < 256; ++a) compare(a, a, a);
}

TEST(YCbCrMatchesSlow, OnPlanesOfAnyLength) {
    for (const int count : {1, 2, 3, 7, 16, 31, 33, 100, 70001}) {
        SCOPED_TRACE(testing::Message() << count << " pixels");
        const Bytes rgba = randomRgba(count, 1, 41);
        Bytes planes[4];
        for (int i = 0; i < count; ++i) {
            const unsigned char* p = &rgba[static_cast<std::size_t>(4 * i)];
            const Rgb colour{p[0], p[1], p[2]};
            const YCbCr v = slow::toYCbCr(colour);
            planes[0].push_back(byte(v.y)), planes[1].push_back(byte(v.cb)), planes[2].push_back(byte(v.cr));
            planes[3].push_back(byte(slow::gray(colour)));
        }
        onEveryMachine([&] {
            Bytes out[4];
            for (auto& plane : out) plane.resize(static_cast<std::size_t>(count));
            const zellab::ConstImageView source(rgba.data(), count, 1);
            zellab::RGBAToYCbCrPlanes(source, {out[0].data(), count, 1}, {out[1].data(), count, 1},
                                      {out[2].data(), count, 1});
            zellab::RGBAToGray(source, {out[3].data(), count, 1});
            for (int k = 0; k < 4; ++k) ASSERT_TRUE(sameSamples(planes[k], out[k], count)) << k;
        });
    }
}

// Sums that end close to a whole number are where the width of a step shows: all greens and reds at a few
// blues.
TEST(GrayMatchesSlow, OnAllRedsAndGreens) {
    for (const int blue : {0, 1, 57, 128, 250, 255}) {
        Bytes rgba, expected;
        for (int r = 0; r < 256; ++r)
            for (int g = 0; g < 256; ++g) {
                rgba.insert(rgba.end(), {byte(r), byte(g), byte(blue), 1});
                expected.push_back(byte(slow::gray({r, g, blue})));
            }
        onEveryMachine([&] {
            Bytes actual(256 * 256);
            zellab::RGBAToGray({rgba.data(), 256, 256}, {actual.data(), 256, 256});
            ASSERT_TRUE(sameSamples(expected, actual, 256)) << "rows red, samples green, blue " << blue;
        });
    }
}

TEST(ColorCubeMatchesSlow, OnRandomCubesOfBothSizes) {
    const Bytes grey = drawnRgba(
        256, 1,
        [](int x, int) {
            return std::array{x, x, x};
        },
        9);
    for (const auto& shape : {std::pair{16, false}, {16, true}, {64, false}}) {
        const int steps = shape.first;
        const bool extreme = shape.second;
        const int side = steps == 16 ? 64 : 512;
        Bytes cube = randomRgba(side, side, 42);
        if (extreme)  // the widest differences that sums have to hold
            for (auto& b : cube) b = b < 128 ? 0 : 255;
        const auto compare = [&](const Bytes& picture, Size size) {
            compareWithSlow(
                size, picture, [&](Bytes& p) { slow::colorCube(p, cube, steps); },
                [&](Bytes& p) {
                    (steps == 16 ? zellab::ApplyColorCube : zellab::ApplyColorCube64)(rgbaView(p, size),
                                                                                      cube.data());
                },
                steps);
        };
        compare(grey, {256, 1});
        for (const Size size : kAwkwardSizes) compare(randomRgba(size.width, size.height, 43), size);
        compare(randomRgba(200, 150, 44), {200, 150});
    }
}

TEST(ColorAdjustMatchesSlow, OnEveryPercentageAndLift) {
    const Size size{37, 23};
    const Bytes picture = randomRgba(size.width, size.height, 45);
    const auto compare = [&](int amount, auto slowForm, auto engine) {
        compareWithSlow(
            size, picture, [&](Bytes& p) { slowForm(p, amount); },
            [&](Bytes& p) { engine(rgbaView(p, size), amount); }, amount);
    };
    for (int percent = -260; percent <= 400; ++percent)
        compare(percent, slow::saturationAdjust, zellab::SaturationAdjust);
    for (int lift = -150; lift <= 150; ++lift)
        compare(lift, slow::logBrightnessAdjust, zellab::LogBrightnessAdjust);
    for (const int lift : {-100000, 2500, 100000})
        compare(lift, slow::logBrightnessAdjust, zellab::LogBrightnessAdjust);
}

}  // namespace
