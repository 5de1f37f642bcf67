#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "zellab/geometry/curveTools.h"
#include "zellab/geometry/pointDeform.h"
#include "zellab/geometry/linearSolve.h"

namespace {

using namespace zellab;

TEST(SolveLinearGauss, SolvesWhatNeedsPivotsWithPaddedRows) {
    // A zero in the first pivot's place, and rows longer than the system.
    double matrix[3][4] = {{0, 2, 1, -9}, {4, 1, 0, -9}, {2, 0, 3, -9}};
    // Right sides of (1, 2, 3) and of (-1, 0.5, 4).
    double rhs[3][3] = {{7, 5, -9}, {6, -3.5, -9}, {11, 10, -9}};
    ASSERT_NE(SolveLinearGauss(matrix[0], sizeof matrix[0], 3, rhs[0], sizeof rhs[0], 2), 0);
    const double expected[3][2] = {{1, -1}, {2, 0.5}, {3, 4}};
    for (int i = 0; i < 3; ++i) {
        for (int c = 0; c < 2; ++c) EXPECT_NEAR(rhs[i][c], expected[i][c], 1e-12);
        EXPECT_EQ(rhs[i][2], -9);
    }
}

TEST(SolveLinearGauss, ReportsASingularSystem) {
    double matrix[2][2] = {{1, 2}, {2, 4}};
    double rhs[2] = {1, 2};
    EXPECT_EQ(SolveLinearGauss(matrix[0], sizeof matrix[0], 2, rhs, sizeof rhs[0], 1), 0);
}

TEST(TriangleAffineMap, TakesThreePointsToThreePointsAndReportsCollinearOnes) {
    const float from[6] = {10, 20, 110, 25, 30, 220}, to[6] = {-5, 3, 40, 80, 7, 7};
    float map[9];
    ASSERT_TRUE(TriangleAffineMap(map, from, to));
    for (int i = 0; i < 3; ++i) {
        const float x = from[2 * i], y = from[2 * i + 1];
        EXPECT_NEAR(map[0] * x + map[1] * y + map[2], to[2 * i], 1e-3);
        EXPECT_NEAR(map[3] * x + map[4] * y + map[5], to[2 * i + 1], 1e-3);
    }
    EXPECT_EQ(map[8], 1.0f);
    const float line[6] = {0, 0, 1, 1, 2, 2};
    EXPECT_FALSE(TriangleAffineMap(map, line, to));
}

struct Controls {
    PointLists from, to;
};

/// A ring of controls, moved by `move`.
template <typename Move>
Controls ringOfControls(const Move& move) {
    Controls controls;
    for (int i = 0; i < 7; ++i) {
        const float angle = static_cast<float>(i) * 0.9f;
        const float x = 50.0f + 40.0f * std::cos(angle), y = 60.0f + 30.0f * std::sin(angle);
        controls.from.append(x, y);
        move(x, y, controls.to);
    }
    return controls;
}

PointLists scatteredPoints() {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(0.0f, 120.0f);
    PointLists points;
    for (int i = 0; i < 50; ++i) points.append(place(random), place(random));
    return points;
}

// Both forms reproduce their own family of maps exactly, whatever the weights: the rigid form a turn with a
// shift, the affine form any affine map.
TEST(MlsDeform, ReproducesItsFamilyOfMaps) {
    const float c = std::cos(0.4f), s = std::sin(0.4f);
    const auto rigid = [&](float x, float y, PointLists& out) {
        out.append(c * x - s * y + 3.0f, s * x + c * y - 8.0f);
    };
    const auto affine = [](float x, float y, PointLists& out) {
        out.append(1.4f * x + 0.3f * y + 3.0f, -0.2f * x + 0.7f * y + 9.0f);
    };
    const PointLists points = scatteredPoints();
    const auto count = static_cast<int>(points.size());
    PointLists expectedRigid, expectedAffine, out;
    for (std::size_t i = 0; i < points.size(); ++i) {
        rigid(points.x[i], points.y[i], expectedRigid);
        affine(points.x[i], points.y[i], expectedAffine);
    }
    const Controls turned = ringOfControls(rigid), sheared = ringOfControls(affine);
    RigidMlsDeform(points, out, turned.from, turned.to, 7, count);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(out.x[i], expectedRigid.x[i], 2e-2);
        EXPECT_NEAR(out.y[i], expectedRigid.y[i], 2e-2);
    }
    AffineMlsDeform(points, out, sheared.from, sheared.to, 7, count);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(out.x[i], expectedAffine.x[i], 2e-2);
        EXPECT_NEAR(out.y[i], expectedAffine.y[i], 2e-2);
    }
}

TEST(MlsDeform, CarriesAPointNextToAControlWithIt) {
    Controls controls = ringOfControls([](float x, float y, PointLists& out) { out.append(x, y); });
    controls.to.x[2] += 6.0f;
    PointLists points, out;
    points.append(controls.from.x[2] + 0.01f, controls.from.y[2]);
    points.append(controls.from.x[5] + 0.01f, controls.from.y[5]);
    for (auto* deform : {&RigidMlsDeform, &AffineMlsDeform}) {
        deform(points, out, controls.from, controls.to, 7, 2);
        EXPECT_NEAR(out.x[0], points.x[0] + 6.0f, 0.05f);
        EXPECT_NEAR(out.x[1], points.x[1], 0.05f);
    }
}

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
