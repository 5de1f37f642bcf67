#include <gtest/gtest.h>

#include <array>

#include "zellab/geometry/curveTools.h"

namespace {

using namespace zellab;

TEST(ChordLagrangeResample, FollowsAParabolaInItsChordsFrame) {
    // (0,0), (4,2), (10,0) on y = x (10 - x) / 12, turned by a quarter: (x, y) -> (-y, x).
    std::array<Vector2f, 3> points = {Vector2f{5, 7}, {3, 11}, {5, 17}};
    std::array<Vector2f, 6> out;
    ChordLagrangeResample(points.data(), 3, out.data(), 6);
    for (int i = 0; i < 6; ++i) {
        const float x = 2.0f * static_cast<float>(i);
        EXPECT_NEAR(out[static_cast<std::size_t>(i)].x, 5.0f - x * (10.0f - x) / 12.0f, 1e-4);
        EXPECT_NEAR(out[static_cast<std::size_t>(i)].y, 7.0f + x, 1e-4);
    }
}

TEST(ChordLagrangeResample, AClosedLineFallsOnItsFirstPoint) {
    std::array<Vector2f, 3> points = {Vector2f{5, 7}, {3, 11}, {5, 7}};
    std::array<Vector2f, 4> out;
    ChordLagrangeResample(points.data(), 3, out.data(), 4);
    for (Vector2f p : out) EXPECT_TRUE(p.x == 5.0f && p.y == 7.0f) << p.x << ',' << p.y;
}

TEST(HermiteSpline, PassesThroughItsPointsAndCountsItsSamples) {
    const std::array<Vector2f, 5> points = {Vector2f{0, 0}, {2, 3}, {5, 4}, {7, 1}, {8, -2}};
    ASSERT_EQ(HermiteSpline(nullptr, points.data(), 5, 0.5f, 3), 16);
    EXPECT_EQ(HermiteSpline(nullptr, points.data(), 3, 0.5f, 3), 0);
    std::array<Vector2f, 16> out;
    HermiteSpline(out.data(), points.data(), 5, 0.5f, 3);
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        EXPECT_EQ(out[4 * i].x, points[i].x);
        EXPECT_NEAR(out[4 * i + 3].y, points[i + 1].y, 1e-6);
    }
    // The tangent at an inner point is tension times the line between its neighbours: one third into the
    // second segment, by hand.
    const float h1 = 20.0f / 27, h2 = 7.0f / 27, s1 = 4.0f / 27, s2 = -2.0f / 27;
    EXPECT_NEAR(out[5].x, 2 * h1 + 5 * h2 + 0.5f * 5 * s1 + 0.5f * 5 * s2, 1e-5);
}

}  // namespace
