#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

#include "zellab/imageproc/tone/psContrastBrightness.h"

namespace {

using Table = std::array<unsigned char, 256>;

/// A row of the reference: its index and entries 0, 32, 64, .., 224.
struct Sample {
    int row;
    int entries[8];
};

const std::vector<Sample> kBrightness = {
    {-150, {0, 12, 25, 37, 50, 63, 79, 106}},     {-120, {0, 15, 30, 45, 60, 75, 95, 124}},
    {-75, {0, 20, 40, 60, 80, 102, 129, 168}},    {-30, {0, 26, 53, 79, 106, 133, 163, 199}},
    {-1, {0, 32, 64, 95, 127, 159, 190, 223}},    {1, {0, 32, 64, 97, 129, 161, 194, 225}},
    {30, {0, 39, 77, 116, 154, 189, 219, 241}},   {75, {0, 51, 103, 152, 191, 219, 238, 249}},
    {120, {0, 68, 136, 194, 227, 243, 251, 254}}, {150, {0, 82, 162, 214, 239, 249, 253, 254}}};
const std::vector<Sample> kContrast = {
    {-50, {0, 41, 76, 105, 128, 151, 180, 215}}, {-25, {0, 37, 70, 101, 128, 155, 186, 220}},
    {1, {0, 32, 64, 96, 128, 160, 192, 224}},    {25, {0, 27, 58, 91, 128, 165, 198, 228}},
    {50, {0, 23, 52, 87, 128, 169, 204, 233}},   {100, {0, 14, 40, 78, 128, 178, 216, 242}}};

struct Family {
    const char* name;
    Table (*build)(int);
    int first, last;
    std::vector<Sample> samples;
};

class SliderCurves : public testing::TestWithParam<Family> {};

TEST_P(SliderCurves, MeetEverySampleOfTheReference) {
    for (const Sample& sample : GetParam().samples) {
        const Table table = GetParam().build(sample.row);
        for (std::size_t k = 0; k < 8; ++k)
            EXPECT_EQ(table[32 * k], sample.entries[k]) << "row " << sample.row << " entry " << 32 * k;
    }
}

TEST_P(SliderCurves, RiseFromBlackToWhiteAndNoRowLiesOutsideTheRange) {
    for (int index : {GetParam().first - 1, 0, GetParam().last + 1, INT_MIN, INT_MAX})
        EXPECT_EQ(GetParam().build(index), Table{}) << index;
    for (int index = GetParam().first; index <= GetParam().last; ++index) {
        if (index == 0) continue;
        const Table table = GetParam().build(index);
        EXPECT_TRUE(std::is_sorted(table.begin(), table.end())) << index;
        EXPECT_EQ(table[0], 0) << index;
        EXPECT_EQ(table[255], 255) << index;
    }
}

INSTANTIATE_TEST_SUITE_P(Families, SliderCurves,
                         testing::Values(Family{"Brightness", zellab::BrightnessTable, -150, 150,
                                                kBrightness},
                                         Family{"Contrast", zellab::ContrastTable, -50, 100, kContrast}),
                         [](const auto& family) { return family.param.name; });

}  // namespace
