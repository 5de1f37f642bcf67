#include "zellab/imageproc/edges/edgeDetect.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/everyMachine.h"
#include "support/guardedBytes.h"
#include "support/randomImage.h"

namespace {

using zellab::EdgeDetectCanny;
using zeltest::Bytes;

Bytes edgesOf(const Bytes& plane, int width, int low, int high, bool automatic = false) {
    const int height = static_cast<int>(plane.size()) / width;
    Bytes edges(plane.size(), 0x55);
    EXPECT_TRUE(
        EdgeDetectCanny({plane.data(), width, height}, {edges.data(), width, height}, low, high, automatic));
    return edges;
}

Bytes smoothPlane(int width, int height) {
    const Bytes rgba = zeltest::patternRgba(width, height, 11);
    Bytes plane(rgba.size() / 4);
    for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = rgba[4 * i + 1];
    return plane;
}

// A weak step over 200 rows, strong on one row alone: the chain must run through every band of rows.
TEST(EdgeDetectCanny, AWeakChainLivesByItsStrongLinkOnly) {
    constexpr int kWidth = 40, kHeight = 200, kStrongRow = 77;
    Bytes plane(kWidth * kHeight, 100);
    for (int y = 0; y < kHeight; ++y)
        std::fill_n(plane.begin() + y * kWidth + 20, 20, static_cast<unsigned char>(124));
    EXPECT_EQ(edgesOf(plane, kWidth, 5, 40), Bytes(plane.size(), 0));
    std::fill_n(plane.begin() + kStrongRow * kWidth + 20, 20, static_cast<unsigned char>(240));
    for (const auto& [low, high] : {std::pair{5, 40}, std::pair{40, 5}}) {
        const Bytes edges = edgesOf(plane, kWidth, low, high);
        for (int y = 1; y < kHeight - 1; ++y)
            ASSERT_EQ(std::count(edges.begin() + y * kWidth + 15, edges.begin() + y * kWidth + 25, 255) > 0,
                      true)
                << "row " << y;
    }
    EXPECT_EQ(edgesOf(plane, kWidth, 5, 1000), Bytes(plane.size(), 0));
}

// The strongest tenth of the thinned pixels starts chains: a faint step beside many strong ones stays out.
TEST(EdgeDetectCanny, AutomaticThresholdsFollowThePicture) {
    constexpr int kWidth = 64, kHeight = 48;
    Bytes plane(kWidth * kHeight, 60);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            if (x >= 24) plane[static_cast<std::size_t>(y * kWidth + x)] = 200;
            if (x >= 48) plane[static_cast<std::size_t>(y * kWidth + x)] = 212;
        }
    const Bytes edges = edgesOf(plane, kWidth, 0, 0, true);
    for (int y = 2; y < kHeight - 2; ++y) {
        EXPECT_GT(std::count(edges.begin() + y * kWidth + 20, edges.begin() + y * kWidth + 28, 255), 0);
        EXPECT_EQ(std::count(edges.begin() + y * kWidth + 40, edges.begin() + y * kWidth + 60, 255), 0);
    }
}

TEST(EdgeDetectCanny, BadArgumentsAndOddShapes) {
    Bytes plane(5000, 1), edges(5000, 0x55);
    EXPECT_FALSE(EdgeDetectCanny({nullptr, 50, 100}, {edges.data(), 50, 100}, 5, 10, false));
    EXPECT_FALSE(EdgeDetectCanny({plane.data(), 50, 100}, {nullptr, 50, 100}, 5, 10, false));
    EXPECT_FALSE(EdgeDetectCanny({plane.data(), 1, 5000}, {edges.data(), 1, 5000}, 5, 10, false));
    EXPECT_FALSE(EdgeDetectCanny({plane.data(), 5000, 1}, {edges.data(), 5000, 1}, 5, 10, false));
    EXPECT_FALSE(EdgeDetectCanny({plane.data(), -50, -100}, {edges.data(), -50, -100}, 5, 10, true));
    EXPECT_EQ(edges, Bytes(5000, 0x55));
    for (const auto& [width, height] :
         {std::pair{2, 2}, std::pair{2, 1000}, std::pair{1000, 2}, std::pair{3, 3}}) {
        const Bytes noise = zeltest::randomPlane(width, height, 3);
        zeltest::GuardedBytes out(noise.size());
        EXPECT_TRUE(EdgeDetectCanny({noise.data(), width, height}, {out.data(), width, height}, 1, 2, true));
        EXPECT_TRUE(out.guardsIntact());
    }
}

TEST(EdgeDetectCanny, WorkersLevelsAndWorkingInPlaceChangeNothing) {
    const Bytes plane = smoothPlane(157, 301);
    for (bool automatic : {false, true}) {
        zeltest::expectSameOnEveryMachine([&] { return edgesOf(plane, 157, 5, 10, automatic); });
        Bytes inPlace = plane;
        EdgeDetectCanny({inPlace.data(), 157, 301}, {inPlace.data(), 157, 301}, 5, 10, automatic);
        EXPECT_EQ(inPlace, edgesOf(plane, 157, 5, 10, automatic));
    }
}

}  // namespace
