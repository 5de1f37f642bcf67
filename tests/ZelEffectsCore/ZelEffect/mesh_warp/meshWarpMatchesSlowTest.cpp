#include <gtest/gtest.h>

#include <random>

#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"
#include "reference/slowMeshWarp.h"
#include "support/everyMachine.h"
#include "zellab/geometry/linearSolve.h"
#include "zellab/geometry/pointDeform.h"

namespace {

using slow::Points;
using zellab::Vector2f;
using zeltest::Bytes;

Points randomPoints(int count, float low, float high, std::mt19937& random) {
    std::uniform_real_distribution<float> coordinate(low, high);
    Points points;
    for (int i = 0; i < count; ++i) points.push_back({coordinate(random), coordinate(random)});
    return points;
}

zellab::PointLists lists(const Points& points) {
    zellab::PointLists result;
    for (const Vector2f& p : points) result.append(p.x, p.y);
    return result;
}

TEST(MlsDeformMatchesSlow, BitForBit) {
    std::mt19937 random(111);
    for (int round = 0; round < 60; ++round) {
        const int controls = 3 + round % 9;
        const Points points = randomPoints(20, -50, 800, random),
                     from = randomPoints(controls, 0, 700, random);
        Points to = from;
        for (Vector2f& p : to) p.x += static_cast<float>(random() % 41u) - 20.0f, p.y *= 1.03f;
        for (const bool rigid : {true, false}) {
            zellab::PointLists out;
            (rigid ? zellab::RigidMlsDeform : zellab::AffineMlsDeform)(lists(points), out, lists(from),
                                                                       lists(to), controls, 20);
            for (std::size_t i = 0; i < points.size(); ++i) {
                const Vector2f expected = slow::movedPoint(points[i], from, to, rigid);
                ASSERT_EQ(expected.x, out.x[i]) << (rigid ? "rigid" : "affine") << ", round " << round;
                ASSERT_EQ(expected.y, out.y[i]) << (rigid ? "rigid" : "affine") << ", round " << round;
            }
        }
    }
}

// Free triangles that share an edge, meet and leave the picture, and have whole coordinates and equal
// vertices now and then.
TEST(TriangleWarpMatchesSlow, BitForBit) {
    std::mt19937 random(112);
    const zellab::TriangleWarpTable table;
    for (int round = 0; round < 400; ++round) {
        const int width = 1 + static_cast<int>(random() % 60u), height = 1 + static_cast<int>(random() % 60u);
        const Bytes source = zeltest::randomRgba(width, height, 113);
        Points from = randomPoints(4, -15, 70, random), to = from;
        for (Vector2f& p : to) p.x += static_cast<float>(random() % 9u) - 4.0f, p.y += 1.7f;
        if (round % 5 == 1)
            for (Vector2f& p : to) p = {std::floor(p.x), std::floor(p.y)};
        if (round % 11 == 5)  // so thin that its map leads far beyond the picture
            to[0] = {0, 10}, to[1] = {40, 10}, to[2] = {20, std::nextafter(10.0f, 11.0f)};
        if (round % 11 == 3) to[2] = to[1];  // no map: the rows hold what the elimination left
        if (round % 7 == 2) to[2] = from[2], to[1] = from[1], to[0] = from[0];
        const std::uint16_t triangles[] = {0, 1, 2, 2, 1, 3};
        Bytes expected = source, actual = source;
        for (int t = 0; t < 2; ++t) {
            Vector2f a[3], b[3];
            for (int k = 0; k < 3; ++k) a[k] = from[triangles[3 * t + k]], b[k] = to[triangles[3 * t + k]];
            slow::warpTriangle(source, expected, width, height, a, b);
            float map[9];
            zellab::TriangleAffineMap(map, &b[0].x, &a[0].x);
            const std::array<float, 6> slowMap = slow::affineMap(b, a);
            for (std::size_t k = 0; k < 6; ++k) ASSERT_EQ(slowMap[k], map[k]) << "round " << round;
        }
        SCOPED_TRACE(testing::Message() << "round " << round << ", " << width << " by " << height);
        zellab::WarpByTriangles(table, {source.data(), width, height}, {actual.data(), width, height},
                                from.data(), to.data(), triangles, 2);
        ASSERT_TRUE(zeltest::sameSamples(expected, actual, width * 4));
        zeltest::onEveryMachine([&] {
            Bytes inPlace = source;
            zellab::warpInPlace({inPlace.data(), width, height}, from.data(), to.data(), triangles, 2);
            ASSERT_TRUE(zeltest::sameSamples(expected, inPlace, width * 4));
        });
        ASSERT_FALSE(HasFailure());
    }
}

}  // namespace
