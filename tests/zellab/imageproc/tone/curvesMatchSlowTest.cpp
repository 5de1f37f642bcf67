#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "reference/slowTone.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/colour/selectiveColor.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/psContrastBrightness.h"
#include "zellab/imageproc/tone/sfCurve.h"

namespace {

using namespace zeltest;

using slow::Table;

/// What the tables hold before a call: shows which entries it writes.
constexpr unsigned char kFill = 77;

Table filledTable() {
    Table table;
    table.fill(kFill);
    return table;
}

Table engineCurve(const std::vector<slow::CurvePoint>& points) {
    std::vector<zellab::CurvePoint> curve;
    for (const auto& p : points) curve.push_back({p.x, p.y});
    Table table = filledTable();
    zellab::SFCurve::BuildTable(curve, table);
    return table;
}

Table slowCurve(const std::vector<slow::CurvePoint>& points) {
    Table table = filledTable();
    slow::curveTable(points, table);
    return table;
}

TEST(CurveMatchesSlow, ThroughThreePoints) {
    for (int x = 0; x < 256; x += 3)
        for (int y = 0; y < 256; y += 5) {
            SCOPED_TRACE(testing::Message() << "through " << x << ", " << y);
            const Table expected = slowCurve({{0, 0}, {x, y}, {255, 255}});
            Table direct = filledTable(), temporary = filledTable();
            zellab::CurveTableThreePoints(direct, x, y);
            zellab::ApplyCurveThreePoints(temporary, x, y);
            ASSERT_TRUE(sameSamples(expected, direct, 256));
            ASSERT_TRUE(sameSamples(expected, temporary, 256));
            ASSERT_TRUE(sameSamples(expected, engineCurve({{0, 0}, {x, y}, {255, 255}}), 256));
        }
}

TEST(CurveMatchesSlow, ThroughAnyNumberOfPoints) {
    std::mt19937 random(21);
    for (int round = 0; round < 400; ++round) {
        const int n = 2 + round % 7;
        std::vector<slow::CurvePoint> points;
        for (int i = 0; i < n; ++i)
            points.push_back({static_cast<int>(random() % 256u), static_cast<int>(random() % 256u)});
        std::sort(points.begin(), points.end(), [](auto a, auto b) { return a.x < b.x; });
        if (round % 3) points.front().x = 0;  // the others show where writing starts
        if (round % 2) points.back().x = 255;
        SCOPED_TRACE(testing::Message() << "round " << round << ", " << n << " points");
        ASSERT_TRUE(sameSamples(slowCurve(points), engineCurve(points), 256));
    }
}

TEST(GammaTableMatchesSlow, BelowAtAndAboveOne) {
    for (const float gamma :
         {-1.0f, 0.0005f, 0.01f, 0.3f, 0.5f, 0.99f, 1.0f, 1.01f, 1.1f, 1.2f, 1.4f, 1.8f, 2.2f, 3.0f, 6.0f}) {
        SCOPED_TRACE(testing::Message() << "gamma " << gamma);
        Table expected = filledTable(), actual = filledTable();
        slow::gammaTable(expected, gamma);
        zellab::GammaTable(actual, gamma);
        EXPECT_TRUE(sameSamples(expected, actual, 256));
    }
}

TEST(LevelsMatchSlow, OverTheirWholeRange) {
    const auto compare = [](std::array<int, 5> params) {
        Table actual{};
        zellab::LevelsAdjust(params, actual);
        ASSERT_TRUE(sameSamples(slow::levels(params), actual, 256)) << testing::PrintToString(params);
    };
    for (const int gamma100 : {0, 1, 45, 99, 100, 101, 180, 300}) {
        compare({0, gamma100, 255, 0, 255});
        compare({0, gamma100, 255, 255, 0});
        compare({0, gamma100, 255, 0, 200});
        compare({40, gamma100, 41, 10, 200});
        compare({90, gamma100, 90, 0, 255});
        compare({120, gamma100, 90, 0, 255});
        compare({20, gamma100, 220, 70, 70});
    }
    std::mt19937 random(22);
    for (int round = 0; round < 2000 && !testing::Test::HasFatalFailure(); ++round) {
        const auto byte = [&] { return static_cast<int>(random() % 256u); };
        compare({byte(), 20 + static_cast<int>(random() % 200u), byte(), byte(), byte()});
    }
}

TEST(ContrastBrightnessMatchesSlow, OnEveryByteAndAtTheRoundingOfBothRows) {
    const Bytes picture = randomRgba(61, 37, 23);
    for (const float brightness : {0.0f, 0.2f, 0.34f, -0.2f, -0.9f, 37.5f, -61.3f, 100.0f, -100.0f, 480.0f})
        for (const float contrast : {0.0f, 0.9f, 1.0f, -0.9f, -1.1f, -37.0f, 62.7f, 100.0f, -100.0f, -350.0f})
            compareWithSlow(
                {61, 37}, picture,
                [&](Bytes& p) {
                    slow::contrastBrightness(p, brightness, contrast, zellab::BrightnessTable,
                                             zellab::ContrastTable);
                },
                [&](Bytes& p) {
                    zellab::PSContrastBrightness().Run({p.data(), 61, 37}, brightness, contrast);
                },
                brightness, contrast);
}

TEST(ContrastBrightness, InfinityIsTheEndAndNoNumberNothing) {
    const Bytes before = randomRgba(16, 16, 25);
    const auto adjusted = [&](float amount) {
        Bytes picture = before;
        zellab::PSContrastBrightness().Run({picture.data(), 16, 16}, amount, amount);
        return picture;
    };
    EXPECT_EQ(adjusted(-INFINITY), adjusted(-100));
    EXPECT_EQ(adjusted(NAN), before);
}

TEST(SelectiveColorMatchesSlow, OnRandomPixels) {
    std::mt19937 random(24);
    for (int round = 0; round < 200000; ++round) {
        unsigned char pixel[3];
        for (auto& b : pixel)
            b = static_cast<unsigned char>(random() % 4u ? random() % 256u : 126 + random() % 4u);
        int order[3] = {pixel[0], pixel[1], pixel[2]}, percent[3], expected[3] = {5, -6, 7};
        std::sort(order, order + 3);
        for (int& p : percent) p = static_cast<int>(random() % 301u) - 150;
        int actual[3] = {5, -6, 7};
        const bool reds = round % 2;
        const auto run = [&](auto* function, int* shift) {
            function(pixel, order[0], order[1], order[2], shift, percent[0], percent[1], percent[2]);
        };
        run(reds ? slow::selectiveReds : slow::selectiveYellows, expected);
        run(reds ? zellab::SelectiveColorReds : zellab::SelectiveColorYellows, actual);
        for (int k = 0; k < 3; ++k)
            ASSERT_EQ(expected[k], actual[k])
                << (reds ? "reds" : "yellows") << ", channel " << k << " of " << testing::PrintToString(pixel)
                << " by " << testing::PrintToString(percent);
    }
}

}  // namespace
