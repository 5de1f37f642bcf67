// Flood fill, morphology and thinning.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "support/randomImage.h"
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
