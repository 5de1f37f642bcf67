#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "reference/slowGuidedFilter.h"
#include "support/everyMachine.h"
#include "support/randomImage.h"
#include "zellab/imageproc/edgeaware/guidedFilterColor.h"
#include "zellab/imageproc/edgeaware/guidedFilterPlane.h"

namespace {

using namespace zeltest;

struct Floats {
    float exponent, scale, factor;
};

Bytes filtered(Bytes rgba, int width, Floats f, int radius, bool smooth = false) {
    static const zellab::GuidedFilterColor filter;
    const int height = static_cast<int>(rgba.size()) / 4 / width;
    filter.Run({rgba.data(), width, height}, f.exponent, f.scale, f.factor, radius, smooth);
    return rgba;
}

/// Largest distance of bytes 0 to 2; byte 3 of `out` must be 255.
int distance(const Bytes& out, const Bytes& expected) {
    int most = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (i % 4 == 3)
            EXPECT_EQ(out[i], 255);
        else
            most = std::max(most, std::abs(out[i] - expected[i]));
    }
    return most;
}

// The tables behind the roots have 2000 steps and the arithmetic is single: a level apart at most.
TEST(GuidedFilterColor, MatchesTheDefinition) {
    for (int radius : {0, 1, 3, 14})
        for (const Floats f :
             {Floats{1.0f, 0.01f, 0.2f}, Floats{0.5f, 0.3f, 0.0f}, Floats{2.0f, 0.001f, 1.6f}})
            for (bool smooth : {false, true}) {
                const Bytes noise = randomRgba(19, 23, 3), pattern = patternRgba(26, 21, 4);
                const slow::GuidedFilter slowNoise(noise, 19, 23, radius),
                    slowPattern(pattern, 26, 21, radius);
                SCOPED_TRACE(testing::Message()
                             << "radius " << radius << " exponent " << f.exponent << smooth);
                EXPECT_LE(distance(filtered(noise, 19, f, radius, smooth),
                                   slowNoise.run(f.exponent, f.scale, f.factor, smooth)),
                          1);
                EXPECT_LE(distance(filtered(pattern, 26, f, radius, smooth),
                                   slowPattern.run(f.exponent, f.scale, f.factor, smooth)),
                          1);
            }
}

// Bright enough, and its window large enough, that a sum of products passes 31 bits.
TEST(GuidedFilterColor, LargeWindowsOfBrightPixelsDoNotOverflow) {
    Bytes bright = randomRgba(9, 7, 8);
    for (auto& b : bright) b |= 0xE0;
    for (int radius : {90, 91, 130})
        EXPECT_LE(distance(filtered(bright, 9, {1.0f, 0.001f, 0.1f}, radius),
                           slow::GuidedFilter(bright, 9, 7, radius).run(1.0, 0.001, 0.1, false)),
                  1)
            << "radius " << radius;
}

// Two equal roots lie on the edges of the closed form, where pictures seldom are.
TEST(GuidedFilterColor, BothInstructionSetsAgreeOnEqualRoots) {
    if (zellab::platform::simdLevel() != zellab::platform::SimdLevel::avx2) GTEST_SKIP();
    constexpr int kWindows = 4096;
    std::vector<float> moments(9 * kWindows), one(9 * kWindows), eight(9 * kWindows);
    const zellab::NineRows<float> rows{moments.data(), kWindows};
    const Bytes random = randomBytes(kWindows * 4, 5);
    for (int x = 0; x < kWindows; ++x) {
        const float v = static_cast<float>(random[static_cast<std::size_t>(x)] * 7 + 1) / 3.0f;
        const int kind = x % 4;  // the largest twice, the smallest twice, all three, one colour
        rows[3][x] = kind == 3 ? 0 : v;
        rows[6][x] = kind == 0 || kind == 2 ? v : 0;
        rows[8][x] = kind == 2 ? v : 0;
    }
    const zellab::RootTables tables;
    const zellab::GainCurve curve(1.0f, 0.001f, 0.3f);
    zellab::coefficientRow(tables, curve, rows, {one.data(), kWindows}, 0, kWindows);
    ASSERT_EQ(zellab::coefficientRowAvx2(tables, curve, rows, {eight.data(), kWindows}, kWindows), kWindows);
    EXPECT_EQ(std::memcmp(one.data(), eight.data(), one.size() * sizeof(float)), 0);
}

// One colour, or colours on one line or in one plane, have roots that coincide and vectors that anything
// fits.
TEST(GuidedFilterColor, FactorOneAndFlatPicturesReturnTheirInput) {
    for (int colours : {1, 2, 3, 256}) {
        Bytes picture = randomRgba(40, 30, 9);
        for (std::size_t i = 0; i < picture.size(); ++i)
            picture[i] =
                colours == 256
                    ? picture[i]
                    : static_cast<unsigned char>(40 + 70 * (picture[i / 4 * 4] % colours) * (i % 4 == 1));
        for (int radius : {0, 2, 90, 91})
            for (bool smooth : {false, true})
                EXPECT_EQ(distance(filtered(picture, 40, {1.0f, 0.4f, 1.0f}, radius, smooth), picture), 0)
                    << colours << " colours, radius " << radius;
    }
}

TEST(GuidedFilterColor, WorkersAndInstructionSetsChangeNothing) {
    const Bytes picture = patternRgba(83, 300, 6);
    for (const Floats f : {Floats{1.0f, 0.01f, 0.2f}, Floats{0.7f, 0.1f, 2.0f}, Floats{1.0f, 0.0f, 1.0f},
                           Floats{90.0f, -1.0f, 1e30f}})
        for (int radius : {2, 20, 95})
            for (bool smooth : {false, true})
                expectSameOnEveryMachine([&] { return filtered(picture, 83, f, radius, smooth); });
}

Bytes guided(Bytes plane, const Bytes& guide, int width, int radius, float epsilon, float scale) {
    const int height = static_cast<int>(plane.size()) / width;
    zellab::GuidedFilterPlane({plane.data(), width, height}, {guide.data(), width, height}, radius, epsilon,
                              scale);
    return plane;
}

// A plane that is a linear function of a smooth guide stays, whatever the window; constants stay always.
TEST(GuidedFilterPlane, KeepsWhatTheGuideExplains) {
    constexpr int kWidth = 96, kHeight = 80;
    const Bytes guide = drawnRgba(kWidth, kHeight, [](int x, int y) {
        return std::array{20 + 2 * x, 240 - 2 * y, 0};
    });
    const Bytes plane = drawnPlane(kWidth, kHeight, [](int x, int y) { return x + y + 10; });
    const Bytes out = guided(plane, guide, kWidth, 2, 1e-3f, 4.0f);
    for (std::size_t i = 0; i < out.size(); ++i) ASSERT_NEAR(out[i], plane[i], 1) << i;
    const Bytes flat(plane.size(), 77), noise = randomRgba(kWidth, kHeight, 5);
    for (float epsilon : {0.0f, 0.1f, -3.0f, std::nanf("")})
        for (float scale : {4.0f, 1.0f, 1e9f, std::nanf("")})
            ASSERT_EQ(guided(flat, noise, kWidth, 2, epsilon, scale), flat) << epsilon << " " << scale;
}

TEST(GuidedFilterPlane, MovesTheEdgeToTheGuidesAndMeansWhereTheGuideIsFlat) {
    constexpr int kWidth = 160, kHeight = 64;
    const Bytes guide = drawnRgba(kWidth, kHeight, [](int x, int) {
        return std::array{90, x >= 80 ? 220 : 90, 90};
    });
    const Bytes ragged =
        drawnPlane(kWidth, kHeight, [](int x, int y) { return x >= 80 + (y / 4 % 2 ? 4 : -4) ? 255 : 0; });
    const auto misses = [&](const Bytes& plane) {
        int count = 0;
        for (int i = 0; i < kWidth * kHeight; ++i) count += (plane[i] >= 128) != (i % kWidth >= 80);
        return count;
    };
    EXPECT_LT(misses(guided(ragged, guide, kWidth, 3, 0.1f, 4.0f)), misses(ragged) / 4);
    // One bright column: a flat guide gives means over two boxes of 3 cells of 4 pixels, so it spreads
    // evenly.
    const Bytes grey(kWidth * kHeight * 4, 90);
    const Bytes column = drawnPlane(kWidth, kHeight, [](int x, int) { return x == 80 ? 252 : 0; });
    const Bytes spread = guided(column, grey, kWidth, 1, 0.0f, 4.0f);
    // Cell 20 holds 252 / 4 / 3 = 21, cell 19 two thirds of that; pixel 81 lies an eighth between their
    // centres.
    EXPECT_EQ(spread[30 * kWidth + 81], 20);
    EXPECT_EQ(spread[30 * kWidth + 100], 0);
}

TEST(GuidedFilterPlane, WorkersAndInstructionSetsChangeNothing) {
    const Bytes noise = patternRgba(130, 150, 8), plane = randomPlane(130, 150, 9);
    expectSameOnEveryMachine([&] { return guided(plane, noise, 130, 2, 0.1f, 2.5f); });
}

}  // namespace
