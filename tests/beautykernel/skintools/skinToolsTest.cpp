#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "beautykernel/skintools/featureMaskPainter.h"
#include "beautykernel/skintools/spotPatch.h"
#include "beautykernel/skintools/spotRepair.h"
#include "beautykernel/skintools/spotTables.h"
#include "support/randomImage.h"
#include "zellab/imageproc/shapes/convexHull.h"
#include "zellab/imageproc/shapes/polygonFill.h"

namespace {

using namespace zellab;
using zeltest::Bytes;

/// Even skin of 160 by 200 pixels with a dark dot of 3 by 3 pixels.
struct Skin {
    static constexpr int kWidth = 160, kHeight = 200;
    Bytes pixels = zeltest::drawnRgba(
        kWidth, kHeight,
        [](int, int) {
            return std::array{205, 160, 140};
        },
        9);
    Bytes mask = Bytes(kWidth * kHeight, 255), spots = Bytes(kWidth * kHeight, 7);
    Byte* at(int x, int y) { return &pixels[static_cast<std::size_t>(y * kWidth + x) * 4]; }
    void dot(int x, int y, int half, int depth = 70) {
        for (int dy = -half; dy <= half; ++dy)
            for (int dx = -half; dx <= half; ++dx)
                for (int c = 0; c < 3; ++c)
                    at(x + dx, y + dy)[c] = static_cast<Byte>(at(x + dx, y + dy)[c] - depth);
    }
    bool repair() {
        return CSpotRepair::Run({pixels.data(), kWidth, kHeight}, {mask.data(), kWidth, kHeight},
                                {.face = {}}, {spots.data(), kWidth, kHeight});
    }
    std::ptrdiff_t marked() const { return std::count(spots.begin(), spots.end(), Byte{255}); }
};

TEST(SpotRepair, AFaintDotOnEvenSkinGoesAndTheRestStays) {
    Skin skin, clean;
    skin.dot(80, 100, 1, 18);
    ASSERT_TRUE(skin.repair());
    EXPECT_GT(skin.marked(), 0);
    for (int y = 0; y < Skin::kHeight; ++y)
        for (int x = 0; x < Skin::kWidth; ++x) {
            const bool near = std::abs(x - 80) <= 4 && std::abs(y - 100) <= 4;
            for (int c = 0; c < 3; ++c)
                ASSERT_LE(std::abs(skin.at(x, y)[c] - clean.at(x, y)[c]), near ? 8 : 0) << x << ',' << y;
            ASSERT_EQ(skin.at(x, y)[3], clean.at(x, y)[3]);
        }
}

TEST(SpotPatch, SolvesItsEquations) {
    // Each written cell fulfils 4 u - neighbours = texture, up to the truncation of the five values.
    for (int radius : {0, 1, 2}) {
        const int side = 2 * radius + 3;
        Bytes pixels = zeltest::randomRgba(side, side, static_cast<unsigned>(radius));
        for (Byte& b : pixels) b = static_cast<Byte>(60 + b / 2);
        repaintSpot({pixels.data(), side, side}, radius + 1, radius + 1, radius);
        const auto value = [&](int x, int y, int c) {
            return static_cast<int>(pixels[static_cast<std::size_t>((y * side + x) * 4 + c)]);
        };
        for (int c = 0; c < 3; ++c)
            for (int y = 1; y < side - 1; ++y)
                for (int x = 1; x < side - 1; ++x) {
                    const int i = x - 1, j = y - 1;
                    const int texture = radius == 0   ? 4
                                        : radius == 1 ? kSpotTexture1[i][j]
                                        : j == 4      ? kSpotTexture2LastRow[c][i]
                                                      : kSpotTexture2[i][j];
                    const int left = 4 * value(x, y, c) - value(x - 1, y, c) - value(x + 1, y, c) -
                                     value(x, y - 1, c) - value(x, y + 1, c);
                    EXPECT_LE(std::abs(left - texture), 4) << "radius " << radius;
                }
    }
}

TEST(ConvexHull, HoldsAllPointsAndTurnsOneWay) {
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        std::vector<Vector2f> points(3 + random() % 20);
        // Whole pixels, tenths and outlines of a few pixels, as features of small faces are.
        const float scale = round % 3 == 0 ? 1.0f : round % 3 == 1 ? 0.1f : 0.02f;
        for (Vector2f& p : points)
            p = {static_cast<float>(random() % 90) * scale, static_cast<float>(random() % 70) * scale};
        const std::vector<Vector2f> hull = convexHull(points);
        if (hull.size() < 3) continue;
        for (std::size_t i = 0; i < hull.size(); ++i) {
            const Vector2f a = hull[i], b = hull[(i + 1) % hull.size()];
            for (const Vector2f p : points)
                ASSERT_GE(
                    (double{b.x} - a.x) * (double{p.y} - a.y) - (double{b.y} - a.y) * (double{p.x} - a.x),
                    0.0)
                    << "round " << round;
        }
    }
    EXPECT_EQ(convexHull({{1, 1}, {1, 1}, {2, 2}}).size(), 3u) << "two different points: left as they were";
    EXPECT_EQ(convexHull({}).size(), 0u);
    const std::vector<Vector2f> small{{0, 0}, {0.9f, 0}, {0.9f, 0.9f}, {0, 0.9f}};
    EXPECT_EQ(convexHull(small).size(), 4u);
    EXPECT_EQ(wholeTurnHull(small).size(), 2u) << "turns below a whole number count as none";
}

/// Even-odd at every pixel, for convex polygons of which each row has one span.
TEST(PolygonFill, MatchesTheCrossingCountAtEveryPixel) {
    std::mt19937 random(5);
    constexpr int kWidth = 50, kHeight = 40;
    for (int round = 0; round < 100; ++round) {
        std::vector<Vector2f> points(8);
        for (Vector2f& p : points)
            p = {static_cast<float>(random() % 800) / 10.0f - 15.0f,
                 static_cast<float>(random() % 700) / 10.0f - 15.0f};
        const std::vector<Vector2f> hull = convexHull(points);
        Bytes filled(kWidth * kHeight, 3), kept = zeltest::randomPlane(kWidth, kHeight, 1);
        const Bytes original = kept;
        ASSERT_TRUE(FillPolygonMask({filled.data(), kWidth, kHeight}, hull, 200));
        ASSERT_TRUE(FillPolygonMaskKeep({kept.data(), kWidth, kHeight}, hull, 9));
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                int crossings = 0;
                const auto fx = static_cast<float>(x), fy = static_cast<float>(y);
                for (std::size_t i = 0; i < hull.size(); ++i) {
                    const Vector2f a = hull[i], b = hull[(i + 1) % hull.size()];
                    if (fy <= std::min(a.y, b.y) || fy > std::max(a.y, b.y) || fx > std::max(a.x, b.x))
                        continue;
                    crossings += a.x == b.x || (b.x - a.x) * (fy - a.y) / (b.y - a.y) + a.x >= fx;
                }
                const auto i = static_cast<std::size_t>(y * kWidth + x);
                ASSERT_EQ(filled[i], crossings % 2 ? 200 : 3) << x << ',' << y << " round " << round;
                ASSERT_EQ(kept[i], crossings % 2 ? original[i] : 9);
            }
    }
}

TEST(FeatureMaskPainter, PaintsWhatItsBitsName) {
    std::vector<Vector2f> points(310);
    const auto ring = [&](int first, int last, float cx, float cy, float rx, float ry) {
        for (int i = first; i <= last; ++i) {
            const float angle =
                6.2832f * static_cast<float>(i - first) / static_cast<float>(last - first + 1);
            points[static_cast<std::size_t>(i)] = {cx + rx * std::cos(angle), cy + ry * std::sin(angle)};
        }
    };
    ring(0, 9, 30, 40, 10, 5);
    ring(10, 19, 70, 40, 10, 5);
    ring(20, 29, 30, 25, 12, 3);
    ring(30, 39, 70, 25, 12, 3);
    ring(50, 79, 50, 80, 14, 6);
    const auto painted = [&](int flags) {
        Bytes mask(100 * 100, 255);
        EXPECT_EQ(CFeatureMaskPainter::Paint({mask.data(), 100, 100}, points.data(), flags, 0), flags != 0);
        return [mask = std::move(mask)](int x, int y) {
            return mask[static_cast<std::size_t>(y * 100 + x)] == 0;
        };
    };
    const auto eyes = painted(kEyes), brows = painted(kBrows), mouth = painted(kMouth), none = painted(0);
    EXPECT_TRUE(eyes(30, 40) && eyes(70, 40) && !eyes(30, 25) && !eyes(50, 80) && !eyes(50, 40));
    EXPECT_TRUE(brows(30, 25) && brows(70, 25) && !brows(50, 25) && !brows(30, 40));
    EXPECT_TRUE(mouth(50, 80) && !mouth(30, 40));
    EXPECT_FALSE(none(30, 40));
}

}  // namespace
