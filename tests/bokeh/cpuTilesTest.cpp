#include "bokeh/cpuTiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <ostream>
#include <set>

#include "bokeh/bokehKernels.h"
#include "bokeh/spinIndex.h"
#include "bokeh/weightPlane.h"
#include "bokehCase.h"
#include "reference/slowBokeh.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using namespace zellab::Bokeh;
using namespace zeltest;

Bytes recordsOf(int width, int height) {
    const zellab::Plane<zellab::Byte> plane = spinIndexPlane(width, height);
    return {plane.data(), plane.data() + plane.size()};
}

Bytes chorePicture(const BokehCase& c) {
    std::atomic<int> next{0};
    const ConvolutionSource source = c.source();
    return assemble(startTileChore(source, next).get(), c.width, c.height);
}

Bytes slowPicture(const BokehCase& c) {
    const Bytes radius =
        c.radius.empty() ? Bytes(c.rgba.size() / 4, static_cast<unsigned char>(c.maximum)) : c.radius;
    return slow::bokehGather(c.rgba, c.width, c.height, radius, c.maximum, c.strip, c.records,
                             {c.look.amount, c.look.intensity, c.look.highlights, c.look.vivid});
}

struct TileCase {
    const char* name;
    int width, height, largest;
    bool spin, constant;
    Look look;
    // In place of its bytes, some of which nobody writes.
    friend void PrintTo(const TileCase& tiles, std::ostream* out) { *out << tiles.name; }
};

class CpuTiles : public testing::TestWithParam<TileCase> {};

TEST_P(CpuTiles, MatchTheObviousLoopsBitForBit) {
    const TileCase& p = GetParam();
    BokehCase c{p.width, p.height, randomRgba(p.width, p.height, 3), {}, randomStrip(4), {}, p.look};
    if (p.constant)
        c.maximum = p.largest;
    else
        c.radius = patchyRadius(p.width, p.height, p.largest, 5);
    if (p.spin) c.records = recordsOf(p.width, p.height);
    const Bytes expected = slowPicture(c);
    onEveryMachine([&] { EXPECT_TRUE(chorePicture(c) == expected); });
}

INSTANTIATE_TEST_SUITE_P(Cases, CpuTiles,
                         testing::Values(TileCase{"identity", 83, 61, 30, false, false, {1, 0, 0, 0}},
                                         TileCase{"lights", 83, 61, 24, false, false, {1.5f, 0.9f, 2, 0.6f}},
                                         TileCase{"spinning", 90, 70, 30, true, false, {1, 0.5f, 1, 0.5f}},
                                         TileCase{"constant", 64, 50, 9, false, true, {1, 0.4f, 1, 0}},
                                         TileCase{"constantSpin", 64, 50, 9, true, true, {1, 0.4f, 1, 0}},
                                         TileCase{"acrossTiles", 263, 6, 5, false, false, {1, 0.3f, 1, 0.2f}},
                                         TileCase{"column", 1, 300, 30, false, false, {1, 0.3f, 1, 0.2f}},
                                         TileCase{"pixel", 1, 1, 30, true, false, {1, 0.3f, 1, 0.2f}}),
                         [](const auto& tested) { return tested.param.name; });

TEST(CpuTiles, FullWindowsOfTheBrightestWeightsKeepTheirSums) {
    BokehCase c{70, 70,          Bytes(70 * 70 * 4, 255), Bytes(70 * 70, 30), Bytes(1056 * 176, 255),
                {}, {1, 1, 3, 1}};
    EXPECT_EQ(chorePicture(c), c.rgba);
}

TEST(CpuTiles, TilesCoverThePictureOnceAndAreSharedThroughTheCounter) {
    BokehCase c{600, 300, randomRgba(600, 300, 7), Bytes(600 * 300, 1), randomStrip(8), {}, {1, 0, 0, 0}};
    std::atomic<int> next{2};  // another worker has taken two of the six
    const ConvolutionSource source = c.source();
    const auto tiles = startTileChore(source, next).get();
    ASSERT_EQ(tiles.size(), 4u);
    EXPECT_EQ(tiles[0].place.x, 512);
    EXPECT_EQ(tiles[0].place.width, 88);
    EXPECT_EQ(tiles[3].place.y, 256);
    EXPECT_EQ(tiles[3].place.height, 44);
    EXPECT_FALSE(chorePicture(c).empty()) << "no pixel is written twice";
}

TEST(SpinIndex, TurnsWithThePlaceAroundTheCentreAndStepsOutwards) {
    const int width = 401, height = 301;
    std::set<int> seen;
    for (int y = 0; y < height; y += 3)
        for (int x = 0; x < width; x += 3) {
            const int record = spinRecord(x, y, width, height);
            seen.insert(record);
            const double right = x + 0.5 - width / 2.0, down = y + 0.5 - height / 2.0;
            const double distance = std::hypot(right, down) / std::hypot(width / 2.0, height / 2.0);
            ASSERT_NEAR(record % 6 + 0.5, distance * 6, 0.51) << x << ',' << y;
            if (std::hypot(right, down) < 2) continue;
            // A turned kernel shows its frame turned by minus the record's angle: that must point outwards.
            const double turned = -(record / 6) * 18 * std::numbers::pi / 180;
            ASSERT_GT((std::cos(turned) * right + std::sin(turned) * down) / std::hypot(right, down),
                      std::cos(9.01 * std::numbers::pi / 180))
                << x << ',' << y;
        }
    EXPECT_GT(seen.size(), 100u);
}

}  // namespace
