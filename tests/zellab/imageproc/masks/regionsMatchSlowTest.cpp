#include <gtest/gtest.h>

#include "reference/slowRegions.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/masks/floodFill.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace {

using namespace zeltest;

/// A plane in which about `percent` of the pixels are `set`, the rest `clear`.
Bytes sparsePlane(Size size, unsigned percent, unsigned char clear, unsigned char set, unsigned seed) {
    Bytes plane = randomPlane(size.width, size.height, seed);
    for (auto& b : plane) b = b * 100u < percent * 256u ? set : clear;
    return plane;
}

// Around the density at which regions begin to span the plane they are most winding.
TEST(FloodFillMatchesSlow, OnWindingRegions) {
    for (const Size size : kAwkwardSizes)
        for (const unsigned percent : {0u, 20u, 41u, 60u})
            for (int round = 0; round < 6; ++round) {
                const Bytes mask = sparsePlane(size, percent, 0, round % 2 ? 255 : 1, 91u + round);
                const int x = round * size.width / 5 - 1, y = round * size.height / 4;
                compareWithSlow(
                    size, mask, [&](Bytes& p) { slow::floodFill(p, size.width, size.height, x, y); },
                    [&](Bytes& p) { zellab::ScanlineFloodFill(planeView(p, size), x, y); }, percent, x, y);
            }
}

// Masks, and grey planes that show the sum; radii below, at and above half of a side.
TEST(BoxMorphologyMatchesSlow, OnSmallAndLargePlanes) {
    for (const Size size : kAwkwardSizes)
        for (const Bytes& plane : {sparsePlane(size, 4, 0, 255, 92), sparsePlane(size, 96, 0, 255, 93),
                                   sparsePlane(size, 30, 1, 3, 94), sparsePlane(size, 30, 253, 254, 95),
                                   randomPlane(size.width, size.height, 96)}) {
            const int half = (std::min(size.width, size.height) - 1) / 2;
            for (const int radius : {0, 1, 2, half - 1, half, half + 1, 200})
                for (const bool dilate : {true, false}) {
                    if (radius < 0) continue;
                    compareWithSlow(
                        size, plane,
                        [&](Bytes& p) { slow::boxMorphology(p, size.width, size.height, radius, dilate); },
                        [&](Bytes& p) { zellab::BoxMorphology(planeView(p, size), radius, dilate); }, radius,
                        dilate);
                }
        }
}

TEST(MaxFiltersMatchSlow, OnEveryWindow) {
    for (const Size size : kAwkwardSizes)
        for (const int radius : {0, 1, 2, 5, 16, 90}) {
            const Bytes plane = randomPlane(size.width, size.height, 97);
            const auto slowForm = [&](int channels, std::array<int, 2> x, std::array<int, 2> y) {
                return [=](Bytes& p) { slow::maxFilter(p, size.width, size.height, channels, x, y); };
            };
            compareWithSlow(
                size, plane, slowForm(1, {radius, radius}, {0, 0}),
                [&](Bytes& p) { zellab::MaxFilterHorizontal(planeView(p, size), radius); }, radius);
            compareWithSlow(
                size, plane, slowForm(1, {0, 0}, {radius, radius}),
                [&](Bytes& p) { zellab::MaxFilterVertical(planeView(p, size), radius); }, radius);
            const int window = radius + 1;
            const std::array<int, 2> reach{window / 2, window - window / 2 - 1};
            compareWithSlow(
                size, plane, slowForm(1, reach, reach),
                [&](Bytes& p) { zellab::MaxFilterBrute(planeView(p, size), window); }, "brute", radius);
            compareWithSlow(
                size, randomRgba(size.width, size.height, 98), slowForm(4, reach, reach),
                [&](Bytes& p) { zellab::MaxFilterBrute(rgbaView(p, size), window); }, "brute", radius);
        }
}

TEST(LabelConnectedRunsMatchesSlow, OnEveryDensity) {
    for (const Size size : kAwkwardSizes)
        for (const unsigned percent : {0u, 3u, 12u, 30u, 41u, 55u, 85u, 100u}) {
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", " << percent << "%");
            const Bytes plane = sparsePlane(size, percent, 127, 128, 99);
            const slow::Labels expected = slow::labelRegions(plane, size.width, size.height);
            std::vector<int> labels(plane.size(), -5);
            const std::vector<zellab::RegionBox> boxes = zellab::LabelConnectedRuns(
                {plane.data(), size.width, size.height}, {labels.data(), size.width, size.height});
            ASSERT_EQ(boxes.size(), expected.boxes.size());
            if (boxes.empty()) continue;  // what labels hold then is not told
            EXPECT_TRUE(sameSamples(expected.labels, labels, size.width));
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                const std::array box{boxes[i].top, boxes[i].bottom, boxes[i].left, boxes[i].right};
                EXPECT_EQ(expected.boxes[i], box) << "region " << i;
            }
        }
}

}  // namespace
