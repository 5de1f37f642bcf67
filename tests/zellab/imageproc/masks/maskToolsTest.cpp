// Flood fill, morphology and thinning.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "support/everyMachine.h"
#include "support/guardedBytes.h"
#include "support/randomImage.h"
#include "zellab/imageproc/masks/floodFill.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace {

using namespace zellab;
using zeltest::Bytes;

/// Random 0 and 255, set with the given chance in 256.
Bytes randomMask(int width, int height, int chance, unsigned seed) {
    Bytes mask = zeltest::randomPlane(width, height, seed);
    for (auto& b : mask) b = b < chance ? 255 : 0;
    return mask;
}

Bytes filledFrom(Bytes mask, int width, int x, int y) {
    ScanlineFloodFill({mask.data(), width, static_cast<int>(mask.size()) / width}, x, y);
    return mask;
}

TEST(FloodFill, FollowsASpiralAndStopsAtDiagonals) {
    // One corridor winds from the seed to the centre; the corner pocket touches it by a diagonal only.
    const char* picture[] = {"#.......##", "#######.#.", "#.....#.##", "#.###.#..#",
                             "#.#...##.#", "#.######.#", "#........#", "##########"};
    Bytes mask;
    int zeros = 0;
    for (const char* row : picture)
        for (const char* p = row; *p; ++p) {
            mask.push_back(*p == '#' ? 77 : 0);
            zeros += *p == '.';
        }
    const Bytes filled = filledFrom(mask, 10, 1, 0);
    EXPECT_EQ(std::count(filled.begin(), filled.end(), 255), zeros - 1);
    EXPECT_EQ(std::count(filled.begin(), filled.end(), 0), 1);
    EXPECT_EQ(std::count(filled.begin(), filled.end(), 77), 80 - zeros);
}

TEST(FloodFill, SeedsAreLimitedAndBadArgumentsIgnored) {
    const Bytes empty(12, 0), full(12, 255);
    EXPECT_EQ(filledFrom(empty, 4, INT_MIN, INT_MAX), full);
    Bytes wall = empty;
    wall[11] = 9;
    EXPECT_EQ(filledFrom(wall, 4, INT_MAX, INT_MAX), wall);
    ScanlineFloodFill({nullptr, 4, 3}, 0, 0);
    Bytes untouched = empty;
    ScanlineFloodFill({untouched.data(), 0, 3}, 0, 0);
    ScanlineFloodFill({untouched.data(), 4, -3}, 0, 0);
    EXPECT_EQ(untouched, empty);
    zeltest::GuardedBytes line(5000, 0);
    ScanlineFloodFill({line.data(), 1, 5000}, 0, 4999);
    EXPECT_TRUE(line.allAre(255) && line.guardsIntact());
}

// A plane as narrow as the window: what is set reaches everything right of it and below, and one row up.
TEST(Morphology, NarrowPlanesSpreadInReadingOrder) {
    Bytes mask(3 * 9, 0);
    mask[4 * 3 + 2] = 255;
    BoxMorphology({mask.data(), 3, 9}, 1, true);
    Bytes expected(3 * 9, 255);
    std::fill_n(expected.begin(), 3 * 3, static_cast<unsigned char>(0));
    expected[3 * 3] = 0;  // two columns left of the pixel, reached only from the next row on
    EXPECT_EQ(mask, expected);
    for (int radius : {5000, INT_MAX}) {
        Bytes spot(7 * 7, 0);
        spot[48] = 90;
        BoxMorphology({spot.data(), 7, 7}, radius, true);
        EXPECT_EQ(spot, Bytes(7 * 7, 90));
        MaxFilterHorizontal({spot.data(), 7, 7}, radius);
        MaxFilterVertical({spot.data(), 7, 7}, radius);
        EXPECT_EQ(spot, Bytes(7 * 7, 90));
    }
}

TEST(Morphology, BruteMaximumIsLopsidedForEvenSizesAndKeepsChannelsApart) {
    constexpr int kWidth = 6, kHeight = 5;
    Bytes pixels(kWidth * kHeight * 4, 0);
    const auto at = [&](int x, int y, int c) {
        return pixels[static_cast<std::size_t>((y * kWidth + x) * 4 + c)];
    };
    pixels[(2 * kWidth + 2) * 4 + 1] = 200;
    EXPECT_TRUE(MaxFilterBrute(zellab::ImageView(pixels.data(), kWidth, kHeight), 2));
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (int c = 0; c < 4; ++c) {
                const bool reached = c == 1 && (x == 2 || x == 3) && (y == 2 || y == 3);
                ASSERT_EQ(at(x, y, c), reached ? 200 : 0) << x << ',' << y << ',' << c;
            }
    EXPECT_TRUE(MaxFilterBrute(zellab::ImageView(pixels.data(), kWidth, kHeight), INT_MAX));
    for (int i = 0; i < kWidth * kHeight; ++i) ASSERT_EQ(at(i % kWidth, i / kWidth, 1), 200);
    EXPECT_FALSE(MaxFilterBrute(zellab::ImageView(), 2));
}

TEST(Morphology, BadArgumentsChangeNothingAndWorkersNeither) {
    const Bytes mask = randomMask(133, 170, 20, 41);
    Bytes same = mask;
    for (int radius : {0, -1, INT_MIN}) {
        BoxMorphology({same.data(), 133, 170}, radius, false);
        MaxFilterHorizontal({same.data(), 133, 170}, radius);
        MaxFilterVertical({same.data(), 133, 170}, radius);
        MaxFilterBrute(zellab::PlaneView<unsigned char>(same.data(), 133, 170), radius);
    }
    BoxMorphology({same.data(), -133, 170}, 3, true);
    BoxMorphology({nullptr, 133, 170}, 3, true);
    MaxFilterHorizontal({nullptr, 133, 170}, 3);
    MaxFilterVertical({same.data(), 133, 0}, 3);
    ThinMask({nullptr, 133, 170});
    ThinMask({same.data(), 133, 0});
    EXPECT_EQ(same, mask);
    zeltest::expectSameOnEveryMachine([&] {
        Bytes out = mask;
        BoxMorphology({out.data(), 133, 170}, 2, true);
        MaxFilterVertical({out.data(), 133, 170}, 5);
        MaxFilterBrute(zellab::PlaneView<unsigned char>(out.data(), 133, 170), 4);
        return out;
    });
}

std::size_t regionCount(const Bytes& mask, int width) {
    std::vector<int> labels(mask.size());
    const int height = static_cast<int>(mask.size()) / width;
    return zellab::LabelConnectedRuns({mask.data(), width, height}, {labels.data(), width, height}).size();
}

// Blobs of all shapes: thinning may neither break a region, nor join two, nor lose one.
TEST(ThinMask, RegionsStayWholeAndThinnedAgainStayAsTheyAre) {
    constexpr int kWidth = 120, kHeight = 90;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const Bytes mask = randomMask(kWidth, kHeight, seed < 4 ? 60 : 150, seed);
        Bytes grown = mask;
        if (seed % 2) BoxMorphology({grown.data(), kWidth, kHeight}, 1, true);
        Bytes thin = grown;
        ThinMask({thin.data(), kWidth, kHeight});
        EXPECT_EQ(regionCount(thin, kWidth), regionCount(grown, kWidth)) << "seed " << seed;
        for (std::size_t i = 0; i < thin.size(); ++i) ASSERT_TRUE(thin[i] == 0 || grown[i] == 255);
        Bytes again = thin;
        ThinMask({again.data(), kWidth, kHeight});
        EXPECT_EQ(again, thin);
    }
}

TEST(ThinMask, ABarBecomesALineAndASmallBlobAPixel) {
    Bytes bar(60 * 20, 0), blob(6 * 6, 0), full(1 * 500, 255);
    for (int y = 5; y < 14; ++y) std::fill_n(bar.begin() + y * 60 + 5, 50, static_cast<unsigned char>(255));
    ThinMask({bar.data(), 60, 20});
    for (int x = 15; x < 45; ++x) {
        int set = 0;
        for (int y = 0; y < 20; ++y) set += bar[static_cast<std::size_t>(y * 60 + x)] != 0;
        ASSERT_EQ(set, 1) << "column " << x;
    }
    for (int i : {14, 15, 20, 21}) blob[static_cast<std::size_t>(i)] = 200;
    ThinMask({blob.data(), 6, 6});
    EXPECT_EQ(std::count(blob.begin(), blob.end(), 200), 1);
    ThinMask({full.data(), 1, 500});
    EXPECT_EQ(full, Bytes(500, 255));
}

}  // namespace
