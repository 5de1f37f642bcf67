#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "reference/slowRegions.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/masks/floodFill.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace {

using zeltest::Bytes;
using zeltest::Size;

/// A plane in which about `percent` of the pixels are `set`, the rest `clear`.
Bytes sparsePlane(Size size, unsigned percent, unsigned char clear, unsigned char set, unsigned seed) {
    Bytes plane = zeltest::randomPlane(size.width, size.height, seed);
    for (auto& b : plane) b = b * 100u < percent * 256u ? set : clear;
    return plane;
}

// Around the density at which regions begin to span the plane they are most winding.
TEST(FloodFillMatchesSlow, OnWindingRegions) {
    for (const Size size : zeltest::kAwkwardSizes)
        for (const unsigned percent : {0u, 20u, 41u, 60u})
            for (int round = 0; round < 6; ++round) {
                const Bytes mask = sparsePlane(size, percent, 0, round % 2 ? 255 : 1, 91u + round);
                const int x = round * size.width / 5 - 1, y = round * size.height / 4;
                SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", " << percent
                                                << "% set, seed " << x << ", " << y);
                Bytes expected = mask, actual = mask;
                slow::floodFill(expected, size.width, size.height, x, y);
                zellab::ScanlineFloodFill({actual.data(), size.width, size.height}, x, y);
                ASSERT_TRUE(zeltest::sameSamples(expected, actual, size.width));
            }
}

// Masks, and grey planes that show the sum; radii below, at and above half of a side.
TEST(BoxMorphologyMatchesSlow, OnSmallAndLargePlanes) {
    for (const Size size : zeltest::kAwkwardSizes)
        for (const Bytes& plane : {sparsePlane(size, 4, 0, 255, 92), sparsePlane(size, 96, 0, 255, 93),
                                   sparsePlane(size, 30, 1, 3, 94), sparsePlane(size, 30, 253, 254, 95),
                                   zeltest::randomPlane(size.width, size.height, 96)}) {
            const int half = (std::min(size.width, size.height) - 1) / 2;
            for (const int radius : {0, 1, 2, half - 1, half, half + 1, 200})
                for (const bool dilate : {true, false}) {
                    if (radius < 0) continue;
                    SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", radius "
                                                    << radius << (dilate ? " dilate" : " erode"));
                    Bytes expected = plane;
                    slow::boxMorphology(expected, size.width, size.height, radius, dilate);
                    zeltest::compareEverywhere(expected, plane, size.width, [&](Bytes& actual) {
                        zellab::BoxMorphology({actual.data(), size.width, size.height}, radius, dilate);
                    });
                    ASSERT_FALSE(HasFailure());
                }
        }
}

TEST(MaxFiltersMatchSlow, OnEveryWindow) {
    for (const Size size : zeltest::kAwkwardSizes)
        for (const int radius : {0, 1, 2, 5, 16, 90}) {
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", " << radius);
            const Bytes plane = zeltest::randomPlane(size.width, size.height, 97);
            Bytes across = plane, down = plane;
            slow::maxFilter(across, size.width, size.height, 1, {radius, radius}, {0, 0});
            slow::maxFilter(down, size.width, size.height, 1, {0, 0}, {radius, radius});
            zeltest::onEveryMachine([&] {
                Bytes actual = plane;
                zellab::MaxFilterHorizontal({actual.data(), size.width, size.height}, radius);
                ASSERT_TRUE(zeltest::sameSamples(across, actual, size.width)) << "horizontal";
                actual = plane;
                zellab::MaxFilterVertical({actual.data(), size.width, size.height}, radius);
                ASSERT_TRUE(zeltest::sameSamples(down, actual, size.width)) << "vertical";
            });
            const int window = radius + 1, before = window / 2, after = window - window / 2 - 1;
            for (const int channels : {1, 4}) {
                const Bytes pixels =
                    zeltest::randomBytes(plane.size() * static_cast<std::size_t>(channels), 98);
                Bytes expected = pixels, actual = pixels;
                slow::maxFilter(expected, size.width, size.height, channels, {before, after},
                                {before, after});
                if (channels == 1)
                    zellab::MaxFilterBrute(zellab::PlaneView(actual.data(), size.width, size.height), window);
                else
                    zellab::MaxFilterBrute(zellab::ImageView(actual.data(), size.width, size.height), window);
                ASSERT_TRUE(zeltest::sameSamples(expected, actual, size.width * channels)) << "brute";
            }
        }
}

TEST(LabelConnectedRunsMatchesSlow, OnEveryDensity) {
    for (const Size size : zeltest::kAwkwardSizes)
        for (const unsigned percent : {0u, 3u, 12u, 30u, 41u, 55u, 85u, 100u}) {
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", " << percent << "%");
            const Bytes plane = sparsePlane(size, percent, 127, 128, 99);
            const slow::Labels expected = slow::labelRegions(plane, size.width, size.height);
            std::vector<int> labels(plane.size(), -5);
            const std::vector<zellab::RegionBox> boxes = zellab::LabelConnectedRuns(
                {plane.data(), size.width, size.height}, {labels.data(), size.width, size.height});
            ASSERT_EQ(boxes.size(), expected.boxes.size());
            if (boxes.empty()) continue;  // what labels hold then is not told
            EXPECT_TRUE(zeltest::sameSamples(expected.labels, labels, size.width));
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                const std::array box{boxes[i].top, boxes[i].bottom, boxes[i].left, boxes[i].right};
                EXPECT_EQ(expected.boxes[i], box) << "region " << i;
            }
        }
}

}  // namespace
