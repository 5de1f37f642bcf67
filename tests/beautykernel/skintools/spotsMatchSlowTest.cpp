#include <gtest/gtest.h>

#include "beautykernel/skintools/spotRepair.h"
#include "reference/slowSpots.h"
#include "support/everyMachine.h"

namespace {

using namespace zeltest;

/// Skin with noise, shade, an edge and dots of several sizes and depths, so that every test of the scan both
/// passes and fails somewhere.
slow::SpotPicture dottedSkin(int width, int height, unsigned seed) {
    slow::SpotPicture p{width, height, randomRgba(width, height, seed), randomPlane(width, height, seed + 1)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto i = static_cast<std::size_t>(y * width + x);
            const int cell = (x / 17) * 3 + (y / 17) * 5, size = cell % 4, depth = 8 + cell % 7 * 4;
            const bool dot = std::abs(x % 17 - 8) <= size && std::abs(y % 17 - 8) <= size;
            const int shade = x / 6 - (dot ? depth : 0) - (y > height * 3 / 4 ? 60 : 0);
            const int base[3] = {190, 150, 130};
            for (std::size_t c = 0; c < 3; ++c)
                p.rgba[i * 4 + c] = static_cast<unsigned char>(base[c] + shade + p.rgba[i * 4 + c] % 3);
            p.skin[i] = x > 5 ? static_cast<unsigned char>(90 + p.skin[i] % 13 + (x > 15) * 100) : 101;
        }
    return p;
}

/// The cells of each scan, and with them every step up to it, by sizes around the limits and by boxes that
/// try both radii, the smaller one alone, and none.
TEST(SpotRepairMatchesSlow, MarksTheSameCells) {
    struct Box {
        int left, top, width, height;
    };
    for (const auto& [width, height] : {Size{9, 40}, {60, 47}, {151, 120}, {410, 402}})
        for (const Box box : {Box{-1, -1, -1, -1},
                              {0, 0, width, height},
                              {width / 4, height / 5, width / 2, height / 2},
                              {3, 3, width / 4, height / 4},
                              {width / 4, height / 5, width, height / 2},
                              {3, 3, std::max(width / 10, 1), std::max(height / 10, 1)}}) {
            SCOPED_TRACE(testing::Message() << width << " by " << height << ", box width " << box.width);
            slow::SpotPicture p = dottedSkin(width, height, static_cast<unsigned>(width));
            // A box that leaves the picture is no box.
            if (box.left + box.width <= width) p.left = box.left;
            p.top = box.top, p.boxWidth = box.width, p.boxHeight = box.height;
            const Bytes expected = slow::spotCells(p);
            Bytes cells(expected.size(), 9), rgba = p.rgba;
            ASSERT_TRUE(zellab::CSpotRepair::Run({rgba.data(), width, height}, {p.skin.data(), width, height},
                                                 {.face = {box.left, box.top, box.width, box.height}},
                                                 {cells.data(), width, height}));
            ASSERT_TRUE(sameSamples(expected, cells, width));
            if (width > 100 && box.left < 1) {
                EXPECT_GT(std::count(cells.begin(), cells.end(), 255), 20) << "the pictures must hold spots";
            }
            for (std::size_t i = 0; i < rgba.size(); ++i) {
                const bool mayChange = cells[i / 4] != 0 && i % 4 != 3;
                ASSERT_TRUE(mayChange || rgba[i] == p.rgba[i]) << "outside the cells, byte " << i;
            }
        }
}

}  // namespace
