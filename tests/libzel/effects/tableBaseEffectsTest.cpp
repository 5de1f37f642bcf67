#include <gtest/gtest.h>

#include <cstdlib>
#include <numeric>

#include "effectSupport.h"

namespace {

using zel::Image;
using zeltest::applied;

/// Sum of the differences of neighbours in a row: how busy a picture is.
long busyness(const Image& image) {
    long sum = 0;
    for (std::size_t i = 4; i < image.rgba.size(); ++i) sum += std::abs(image.rgba[i] - image.rgba[i - 4]);
    return sum;
}

TEST(TableBaseEffects, EachDoesWhatItsNameSays) {
    const Image image = zeltest::testImage(90, 120, 2);
    EXPECT_GT(busyness(applied("sharp", image, {})), busyness(image));
    EXPECT_LT(busyness(applied("sharp", image, {"amount=-0.8", "radius=5"})), busyness(image));
    EXPECT_LT(busyness(applied("gauss-blur", image, {"radius=6"})), busyness(image) / 2);
    const Image blocks = applied("mosaic", image, {"blockSize=30"});
    EXPECT_EQ(blocks.rgba[0], blocks.rgba[4 * (29 * 90 + 29)]);
    const Image grey = applied("color-mixing", image, {"saturation=-100"});
    EXPECT_EQ(grey.rgba[4], grey.rgba[5]);
    EXPECT_EQ(grey.rgba[5], grey.rgba[6]);
    const auto sum = [](const Image& i) { return std::accumulate(i.rgba.begin(), i.rgba.end(), 0L); };
    EXPECT_GT(sum(applied("color-mixing", image, {"lift=10"})), sum(image)) << "the fourth value is passed";
}

TEST(TableBaseEffects, AlphaMixPlacesTheMask) {
    const Image image = zeltest::testImage(30, 20, 3), second = zeltest::testImage(30, 20, 4);
    EXPECT_EQ(applied("alpha-mix", image, {}, {}, nullptr, &second).rgba, second.rgba);

    zel::Mask mask{4, 4, std::vector<unsigned char>(16, 255)};
    const Image mixed = applied("alpha-mix", image, {"left=28", "top=-2"}, {}, &mask, &second);
    for (std::size_t i = 0; i < image.rgba.size(); ++i) {
        const std::size_t x = i / 4 % 30, y = i / 120;
        ASSERT_EQ(mixed.rgba[i], x >= 28 && y < 2 ? second.rgba[i] : image.rgba[i]) << x << ',' << y;
    }

    const Image other = zeltest::testImage(31, 20, 5);
    EXPECT_THROW(applied("alpha-mix", image, {}, {}, nullptr, &other), zel::Failure);
}

}  // namespace
