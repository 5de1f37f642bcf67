#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/psContrastBrightness.h"
#include "zellab/imageproc/tone/sfCurve.h"

namespace {

using Table = std::array<unsigned char, 256>;

/// A row of the reference: its index and entries 0, 32, 64, .., 224.
struct Sample {
    int row;
    int entries[8];
};

constexpr Sample kBrightness[] = {
    {-150, {0, 12, 25, 37, 50, 63, 79, 106}},     {-120, {0, 15, 30, 45, 60, 75, 95, 124}},
    {-75, {0, 20, 40, 60, 80, 102, 129, 168}},    {-30, {0, 26, 53, 79, 106, 133, 163, 199}},
    {-1, {0, 32, 64, 95, 127, 159, 190, 223}},    {1, {0, 32, 64, 97, 129, 161, 194, 225}},
    {30, {0, 39, 77, 116, 154, 189, 219, 241}},   {75, {0, 51, 103, 152, 191, 219, 238, 249}},
    {120, {0, 68, 136, 194, 227, 243, 251, 254}}, {150, {0, 82, 162, 214, 239, 249, 253, 254}}};
constexpr Sample kContrast[] = {
    {-50, {0, 41, 76, 105, 128, 151, 180, 215}}, {-25, {0, 37, 70, 101, 128, 155, 186, 220}},
    {1, {0, 32, 64, 96, 128, 160, 192, 224}},    {25, {0, 27, 58, 91, 128, 165, 198, 228}},
    {50, {0, 23, 52, 87, 128, 169, 204, 233}},   {100, {0, 14, 40, 78, 128, 178, 216, 242}}};

struct Family {
    const char* name;
    void (*build)(int, unsigned char*);
    int first, last;
    std::vector<Sample> samples;
};

class SliderCurves : public testing::TestWithParam<Family> {};

Table row(const Family& family, int index) {
    Table table;
    table.fill(77);
    family.build(index, table.data());
    return table;
}

TEST_P(SliderCurves, MeetEverySampleOfTheReference) {
    for (const Sample& sample : GetParam().samples) {
        const Table table = row(GetParam(), sample.row);
        for (std::size_t k = 0; k < 8; ++k)
            EXPECT_EQ(table[32 * k], sample.entries[k]) << "row " << sample.row << " entry " << 32 * k;
    }
}

TEST_P(SliderCurves, RiseWithTheInputFromBlackToWhite) {
    for (int index = GetParam().first; index <= GetParam().last; ++index) {
        if (index == 0) continue;
        const Table table = row(GetParam(), index);
        EXPECT_TRUE(std::is_sorted(table.begin(), table.end())) << index;
        EXPECT_EQ(table[0], 0) << index;
        EXPECT_EQ(table[255], 255) << index;
    }
}

// What an eye would see in a gradient: steps that jump, or a slope that changes at once. The last entries of
// the darkest rows climb as steeply as their bright counterparts are flat there.
TEST_P(SliderCurves, BendWithoutKinks) {
    constexpr std::size_t kWindow = 16, kTop = 12;
    for (int index = GetParam().first; index <= GetParam().last; ++index) {
        if (index == 0) continue;
        const Table table = row(GetParam(), index);
        const std::size_t end = index < 0 ? 255 - kTop : 255;
        for (std::size_t i = 1; i < end; ++i)
            ASSERT_LE(std::abs(table[i + 1] - 2 * table[i] + table[i - 1]), 2) << index << " at " << i;
        const auto slope = [&](std::size_t i) { return (table[i + kWindow] - table[i]) / 16.0; };
        for (std::size_t i = 0; i + 2 * kWindow <= end; ++i)
            ASSERT_LT(std::abs(slope(i + kWindow) - slope(i)), 1.0) << index << " at " << i;
    }
}

TEST_P(SliderCurves, NoRowOutsideTheRangeNorRowZero) {
    for (int index : {GetParam().first - 1, 0, GetParam().last + 1, INT_MIN, INT_MAX})
        EXPECT_EQ(row(GetParam(), index), Table{}) << index;
}

INSTANTIATE_TEST_SUITE_P(
    Families, SliderCurves,
    testing::Values(
        Family{"Brightness",
               zellab::BrightnessTable,
               -150,
               150,
               {std::begin(kBrightness), std::end(kBrightness)}},
        Family{"Contrast", zellab::ContrastTable, -50, 100, {std::begin(kContrast), std::end(kContrast)}}),
    [](const auto& family) { return family.param.name; });

TEST(BrightnessTable, RisesWithTheRowAndReachesWhiteOnlyAtTheEnd) {
    Table before;
    zellab::BrightnessTable(-150, before.data());
    for (int index = -149; index <= 150; ++index) {
        if (index == 0) continue;
        Table table;
        zellab::BrightnessTable(index, table.data());
        for (std::size_t i = 0; i < 256; ++i) ASSERT_GE(table[i], before[i]) << index << " at " << i;
        EXPECT_LT(table[230], 255) << index;
        if (index < 0) {
            EXPECT_LT(table[254], 255) << index;
        }
        before = table;
    }
}

TEST(ContrastTable, SteepensAboutTheCentreWithTheRow) {
    Table before;
    zellab::ContrastTable(-50, before.data());
    for (int index = -49; index <= 100; ++index) {
        if (index == 0) continue;
        Table table;
        zellab::ContrastTable(index, table.data());
        for (std::size_t i = 0; i < 128; ++i) ASSERT_LE(table[i], before[i]) << index << " at " << i;
        for (std::size_t i = 128; i < 256; ++i) ASSERT_GE(table[i], before[i]) << index << " at " << i;
        EXPECT_EQ(table[128], 128);
        before = table;
    }
}

/// What a grey of that level becomes.
int adjusted(int level, float brightness, float contrast) {
    unsigned char pixel[4] = {static_cast<unsigned char>(level), 0, 255, 9};
    zellab::PSContrastBrightness().Run({pixel, 1, 1}, brightness, contrast);
    EXPECT_EQ(pixel[3], 9);
    return pixel[0];
}

TEST(ContrastBrightness, StepsOfTheSlidersAreRounded) {
    Table table;
    zellab::BrightnessTable(-149, table.data());
    EXPECT_EQ(adjusted(200, -100, 0), table[200]);
    EXPECT_EQ(adjusted(200, -std::numeric_limits<float>::infinity(), 0), table[200]);
    zellab::BrightnessTable(150, table.data());
    EXPECT_EQ(adjusted(70, 1e30f, 0), table[70]);
    zellab::ContrastTable(-49, table.data());
    EXPECT_EQ(adjusted(70, 0, -100), table[70]);
    zellab::ContrastTable(99, table.data());
    EXPECT_EQ(adjusted(70, 0, 99.9f), table[70]);
    // Below half a step, and where there is no number.
    EXPECT_EQ(adjusted(70, 0.2f, 0.9f), 70);
    EXPECT_EQ(adjusted(70, std::nanf(""), std::nanf("")), 70);
}

// A first x above 0 shifts the segments to the left, and what is too long ends with the table.
TEST(SFCurve, OddPointsStayInsideTheTable) {
    std::vector<unsigned char> guarded(256 + 64, 0xa5);
    unsigned char* const table = guarded.data() + 32;
    const int wild[][8] = {{-500, 999, INT_MIN, INT_MAX, INT_MAX, INT_MIN, 3, 3},
                           {300, 1, 400, 2, 500, 3, 600, 4},
                           {7, 7, 7, 7, 7, 7, 7, 7}};
    for (const auto& points : wild)
        for (int count : {-1, 0, 1, 2, 3, 4}) zellab::SFCurve::BuildTable(points, count, table);
    zellab::SFCurve curve;
    curve.BuildChannel(wild[0], 4, 5);
    curve.BuildChannel(wild[0], 4, -1);
    for (std::size_t i = 0; i < 32; ++i) {
        ASSERT_EQ(guarded[i], 0xa5);
        ASSERT_EQ(guarded[32 + 256 + i], 0xa5);
    }
}

TEST(GammaTable, LeavesTheTableWhereThereIsNoCurve) {
    Table table;
    table.fill(5);
    const Table before = table;
    for (float gamma : {0.0f, 0.0009f, -2.0f, std::nanf("")}) zellab::GammaTable(table.data(), gamma);
    EXPECT_EQ(table, before);
    zellab::GammaTable(table.data(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(table[1], 255);
}

Table levels(std::array<int, 5> params) {
    Table table;
    table.fill(99);
    zellab::LevelsAdjust(params.data(), table.data());
    return table;
}

TEST(LevelsAdjust, WildLimitsAreContained) {
    for (const auto& params : std::vector<std::array<int, 5>>{{INT_MIN, 140, INT_MAX, INT_MIN, INT_MAX},
                                                              {-5, 100, 300, -50, 400},
                                                              {400, 90, 500, 0, 255},
                                                              {255, INT_MIN, 0, 9, 9},
                                                              {0, INT_MAX, 255, 300, -300}})
        levels(params);
    EXPECT_EQ(levels({-5, 100, 300, -50, 400})[0], 0);
    zellab::LevelsAdjust(nullptr, nullptr);
}

}  // namespace
