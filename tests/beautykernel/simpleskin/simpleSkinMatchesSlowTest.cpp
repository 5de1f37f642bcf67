#include <gtest/gtest.h>

#include "reference/slowSimpleSkin.h"
#include "support/everyMachine.h"
#include "zel_effects/zel_effects.h"

namespace {

using ZelImageCore::TableSkin;
using namespace zeltest;

/// Noise meets every branch, a patterned picture the values between; one size is shared by workers.
std::vector<std::pair<Size, Bytes>> pictures() {
    std::vector<std::pair<Size, Bytes>> all;
    for (const Size size : kAwkwardSizes) all.emplace_back(size, randomRgba(size.width, size.height, 61));
    all.emplace_back(Size{160, 90}, patternRgba(160, 90, 62));
    return all;
}

TEST(BrightAndMascaraMatchSlow, OnEveryLevel) {
    for (const auto& [shape, picture] : pictures())
        for (const int radius : {0, 1, 3, 100})
            for (const int level : {-2, 0, 1, 3, 7, 10, 15}) {
                const auto size = shape;
                const auto slowForm = [&](Bytes& p) {
                    slow::highPassBrighten(p, size.width, size.height, radius, level);
                };
                compareWithSlow(
                    size, picture, slowForm,
                    [&](Bytes& p) {
                        EXPECT_TRUE(TableSkin::ImageProcessWithBright(p.data(), size.width, size.height,
                                                                      radius, level));
                    },
                    radius, level);
                compareWithSlow(
                    size, picture, slowForm,
                    [&](Bytes& p) {
                        TableSkin::ImageProcessWithMascara(p.data(), size.width, size.height, radius, level);
                    },
                    radius, level);
            }
}

TEST(NatureTable, RisesFromBlackAndLiftsTheMiddle) {
    const auto& table = zellab::NatureTable;
    EXPECT_TRUE(std::is_sorted(table.begin(), table.end()));
    for (const auto& [from, to] : {std::pair{10, 0}, {12, 3}, {40, 40}, {64, 71}, {255, 255}})
        EXPECT_EQ(table[static_cast<std::size_t>(from)], to);
    for (int i = 0; i < 256; ++i)
        EXPECT_NEAR(table[static_cast<std::size_t>(i)] - i, i < 40 ? -5 : 9, 9) << i;
}

TEST(NatureSmoothMatchesSlow, OnNoiseAndPattern) {
    for (const auto& [shape, picture] : pictures())
        for (const int radius : {0, 1, 4, 100}) {
            const auto size = shape;
            compareWithSlow(
                size, picture, [&](Bytes& p) { slow::natureSmooth(p, size.width, size.height, radius); },
                [&](Bytes& p) {
                    TableSkin::ImageProcessWithNatureSmooth(p.data(), size.width, size.height, radius);
                },
                radius);
        }
}

}  // namespace
