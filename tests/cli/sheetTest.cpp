#include "cli/drawing/sheet.h"

#include <gtest/gtest.h>

#include "cli/drawing/glyphs.h"
#include "hostSupport.h"

namespace {

using namespace zeltest;

zelcli::Image flat(int width, int height, unsigned char grey, unsigned char alpha = 255) {
    zelcli::Image image{width, height, Bytes(static_cast<std::size_t>(4 * width * height), grey)};
    for (std::size_t i = 3; i < image.rgba.size(); i += 4) image.rgba[i] = alpha;
    return image;
}

int countGrey(const zelcli::Image& image, unsigned char grey, int fromX, int toX) {
    int count = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = fromX; x < toX; ++x) {
            const unsigned char* p = image.rgba.data() + 4 * (y * image.width + x);
            count += p[0] == grey && p[1] == grey && p[2] == grey;
        }
    return count;
}

TEST(Sheet, ShowsBothPicturesWholeOnTheirSides) {
    const zelcli::Image sheet = zelcli::makeSheet(flat(200, 90, 77), flat(200, 90, 155), "bright");
    const int middle = sheet.width / 2;
    EXPECT_EQ(countGrey(sheet, 77, 0, middle), 200 * 90);
    EXPECT_EQ(countGrey(sheet, 155, middle, sheet.width), 200 * 90);
    EXPECT_EQ(countGrey(sheet, 77, middle, sheet.width), 0);
    for (std::size_t i = 3; i < sheet.rgba.size(); i += 4) ASSERT_EQ(sheet.rgba[i], 255);
}

TEST(Sheet, BreaksALongLabelInsteadOfGrowing) {
    std::string chain = "auto-face-inpaint";
    for (int i = 0; i < 6; ++i) chain += " + auto-remove-black-circle";
    const zelcli::Image sheet = zelcli::makeSheet(flat(500, 90, 77), flat(500, 90, 155), chain);
    EXPECT_LT(sheet.width, 1100);
    EXPECT_EQ(countGrey(sheet, 155, sheet.width / 2, sheet.width), 500 * 90);
    EXPECT_GT(countGrey(sheet, 232, sheet.width / 2, sheet.width), 150 * 60) << "all of its 150 letters";
}

TEST(Sheet, TakesAwkwardPictures) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 5000}, {5000, 1}, {3001, 2}}) {
        const zelcli::Image sheet = zelcli::makeSheet(flat(width, height, 60), flat(width, height, 61), "x");
        EXPECT_LE(sheet.width, 2100);
        EXPECT_LE(sheet.height, 1500);
        EXPECT_GT(countGrey(sheet, 61, sheet.width / 2, sheet.width), 0) << width << " by " << height;
    }
}

TEST(Sheet, ReducesByTheMeanOfAreas) {
    const auto check = [](int x, int y) {
        const int grey = (x + y) % 2 * 200;
        return std::array{grey, grey, grey};
    };
    const zelcli::Image checks{400, 300, drawnRgba(400, 300, check)};
    const zelcli::Image reduced = zelcli::reduceToFit(checks, 100, 100);
    EXPECT_EQ(reduced.width, 100);
    EXPECT_EQ(reduced.height, 75);
    EXPECT_EQ(countGrey(reduced, 100, 0, 100), 100 * 75);
    // What is wholly clear has no say in the colour.
    zelcli::Image half = flat(2, 1, 200);
    half.rgba[0] = 90;
    half.rgba[3] = 0;
    const zelcli::Image one = zelcli::reduceToFit(half, 1, 1);
    EXPECT_EQ(one.rgba[0], 200);
    EXPECT_EQ(one.rgba[3], 128);
    EXPECT_EQ(zelcli::reduceToFit(checks, 4000, 4000).rgba, checks.rgba);
}

}  // namespace
