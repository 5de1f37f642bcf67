// Flood fill, morphology and thinning.
#include <gtest/gtest.h>

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

/// How many squares of two by two are set.
int squares(const Bytes& mask, int width) {
    int count = 0;
    for (std::size_t i = 0, w = static_cast<std::size_t>(width); i + w + 1 < mask.size(); ++i)
        count += mask[i] && mask[i + 1] && mask[i + w] && mask[i + w + 1];
    return count;
}

// Blobs of all shapes: thinning may neither break a region, nor join two, nor lose one.
TEST(ThinMask, RegionsStayWholeGrowThinAndThinnedAgainStayAsTheyAre) {
    constexpr int kWidth = 120, kHeight = 90;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const Bytes mask = randomMask(kWidth, kHeight, seed < 4 ? 60 : 150, seed);
        Bytes grown = mask;
        if (seed % 2) BoxMorphology({grown.data(), kWidth, kHeight}, 1, true);
        Bytes thin = grown;
        ThinMask({thin.data(), kWidth, kHeight});
        EXPECT_EQ(regionCount(thin, kWidth), regionCount(grown, kWidth)) << "seed " << seed;
        for (std::size_t i = 0; i < thin.size(); ++i) ASSERT_TRUE(thin[i] == 0 || grown[i] == 255);
        EXPECT_LT(squares(thin, kWidth) * 5, squares(grown, kWidth)) << "seed " << seed;
        Bytes again = thin;
        ThinMask({again.data(), kWidth, kHeight});
        EXPECT_EQ(again, thin);
    }
}

}  // namespace
