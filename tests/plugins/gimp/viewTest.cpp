#include <gtest/gtest.h>

#include "gimp/dialog/viewPixels.h"

namespace {

using zelgimp::Rgba;
using zelgimp::Spot;
using zelgimp::ViewMap;

constexpr std::uint32_t kOutside = 0xff010203;

// A wheel that lets the picture slip away under the pointer, or a map whose two directions disagree, is seen at once.
TEST(GimpPreview, ZoomHoldsWhatLiesUnderThePointer) {
    ViewMap map(4000, 3000);
    map.resize(400, 400);
    EXPECT_DOUBLE_EQ(map.zoom(), 0.1);
    const Spot pointer{180, 210};
    const Spot held = map.toPicture(pointer);
    for (const double zoom : {0.5, 3.0, 0.4}) {
        map.zoomTo(zoom, pointer);
        const Spot now = map.toScreen(held);
        EXPECT_NEAR(now.x, pointer.x, 1e-9);
        EXPECT_NEAR(now.y, pointer.y, 1e-9);
    }
    // The picture cannot be dragged out of the window that it covers.
    map.pan(1e6, -1e6);
    EXPECT_DOUBLE_EQ(map.toPicture({0, 0}).x, 0);
    EXPECT_DOUBLE_EQ(map.toPicture({400, 400}).y, 3000);
}

TEST(GimpPreview, ReducesByTheMeanAndNeverReadsBesideThePicture) {
    // Columns of black and white; the right half is transparent white.
    Rgba picture(400, 7);
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) {
        const std::size_t x = i / 4 % 400;
        const unsigned char value = x < 200 && x % 2 == 0 ? 0 : 255;
        picture.bytes[i] = picture.bytes[i + 1] = picture.bytes[i + 2] = value;
        picture.bytes[i + 3] = x < 200 ? 255 : 0;
    }
    ViewMap map(400, 7);
    map.resize(100, 50);
    const auto pixels = zelgimp::viewPixels(picture, map, kOutside);
    ASSERT_EQ(pixels.size(), 100u * 50u);
    EXPECT_EQ(pixels.front(), kOutside);
    EXPECT_EQ(pixels.back(), kOutside);
    EXPECT_EQ(pixels[25 * 100 + 10], 0xff808080);
    // The chequered ground, not the colour that nothing shows.
    EXPECT_TRUE(pixels[25 * 100 + 90] == 0xff999999 || pixels[25 * 100 + 90] == 0xff666666);

    for (const double zoom : {ViewMap::kLeastZoom, 0.3, 1.0, ViewMap::kMostZoom}) {
        map.zoomTo(zoom, {100, 50});
        EXPECT_EQ(zelgimp::viewPixels(picture, map, kOutside).size(), 100u * 50u);
    }
}

}  // namespace
