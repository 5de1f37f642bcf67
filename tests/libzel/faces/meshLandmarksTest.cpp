// The landmarks of a mesh that is drawn by hand: an oval face, mirrored about x = 0, with pupils two units apart.
#include "libzel/faces/meshLandmarks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "libzel/faces/meshParts.h"
#include "libzel/faces/polyline.h"

namespace {

using zel::FaceMesh;
using zel::Landmarks;
using zellab::Vector2f;

constexpr float kFar = 1e4f;  // where the points lie that no landmark may come from

class DrawnMesh {
public:
    DrawnMesh() {
        for (std::size_t i = 0; i < zel::kMeshPoints; ++i)
            mesh.points[i] = {kFar + static_cast<float>(i), kFar};
        drawOutline();
        drawEyes();
        drawLips();
        drawNose();
    }

    FaceMesh mesh;

private:
    Vector2f& at(int number) { return mesh.points[static_cast<std::size_t>(number)]; }

    void drawOutline() {
        for (std::size_t i = 0; i < zel::kMeshOutline.size(); ++i) {
            const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) /
                                static_cast<float>(zel::kMeshOutline.size());
            at(zel::kMeshOutline[i]) = {2 * std::sin(angle), 0.7f - 2.8f * std::cos(angle)};
        }
    }

    /// Both lists tell of the same points in the same order, mirrored.
    void placeInEyes(std::size_t index, Vector2f left) {
        at(zel::kMeshLeftEye[index]) = left;
        at(zel::kMeshRightEye[index]) = {-left.x, left.y};
    }

    void drawEyes() {
        for (std::size_t i = 0; i < zel::kMeshLeftEye.size(); ++i) placeInEyes(i, {-1, 0.1f});
        const auto onArc = [](float share, float rise) {
            return Vector2f{-1.5f + share, -rise * 4 * share * (1 - share)};
        };
        for (std::size_t i = 0; i < 9; ++i) placeInEyes(i, onArc(static_cast<float>(i) / 8, -0.2f));
        for (std::size_t i = 1; i < 8; ++i) placeInEyes(8 + i, onArc(static_cast<float>(i) / 8, 0.25f));
        // Brows: lower edge 46 53 52 65 55, upper edge 70 63 105 66 107.
        for (std::size_t i = 0; i < 5; ++i) {
            const float share = static_cast<float>(i) / 4;
            const std::size_t lower[] = {50, 51, 52, 53, 69}, upper[] = {64, 65, 66, 67, 68};
            placeInEyes(lower[i], onArc(share, 0.2f) - Vector2f{0, 0.6f});
            placeInEyes(upper[i], onArc(share, 0.2f) - Vector2f{0, 0.8f});
        }
        placeInEyes(70, {-0.2f, 0.05f});  // 193, on the bridge
        placeInEyes(62, {-0.4f, 0.05f});  // 245
    }

    /// Four rings, each of eleven points below, corners included, and nine above.
    void drawLips() {
        for (std::size_t ring = 0; ring < 4; ++ring) {
            constexpr float kReach[] = {0.8f, 0.6f, 0.75f, 0.7f}, kOpening[] = {0.4f, 0.1f, 0.3f, 0.2f};
            for (std::size_t i = 0; i < 20; ++i) {
                const bool below = i <= 10;
                const float share = static_cast<float>(below ? i : i - 10) / 10;
                at(zel::kMeshLips[20 * ring + i]) = {
                    kReach[ring] * (2 * share - 1),
                    2 + (below ? 1.0f : -1.0f) * kOpening[ring] * 4 * share * (1 - share)};
            }
        }
    }

    void drawNose() {
        const auto pair = [this](int left, int right, Vector2f p) {
            at(left) = p;
            at(right) = {-p.x, p.y};
        };
        pair(131, 360, {-0.35f, 0.8f});
        pair(97, 326, {-0.2f, 1.3f});
        pair(64, 294, {-0.45f, 1.15f});
        at(2) = {0, 1.35f};
        at(4) = {0, 1.1f};
    }
};

void expectSame(const Landmarks& a, const Landmarks& b, float tolerance) {
    for (std::size_t i = 0; i < zel::kLandmarks; ++i) {
        EXPECT_NEAR(a[i].x, b[i].x, tolerance) << i;
        EXPECT_NEAR(a[i].y, b[i].y, tolerance) << i;
    }
}

TEST(MeshLandmarks, MirrorLikeTheMesh) {
    const Landmarks points = zel::meshLandmarks(DrawnMesh().mesh);
    Landmarks mirrored;
    for (std::size_t i = 0; i < zel::kLandmarks; ++i) {
        const Vector2f p = points[zel::mirrorOrder()[i]];
        mirrored[i] = {-p.x, p.y};
    }
    expectSame(points, mirrored, 1e-4f);
}

TEST(MeshLandmarks, LieOnTheirFeatures) {
    const Landmarks points = zel::meshLandmarks(DrawnMesh().mesh);
    const auto expectAt = [&](std::size_t landmark, float x, float y, float tolerance = 1e-3f) {
        EXPECT_NEAR(points[landmark].x, x, tolerance) << landmark;
        EXPECT_NEAR(points[landmark].y, y, tolerance) << landmark;
    };
    expectAt(0, 0, 3.5f);
    // Eyes are set right by little.
    expectAt(21, -1.5f, 0, 0.1f);
    expectAt(25, -0.5f, 0, 0.05f);
    expectAt(19, -1, 0.2f, 0.05f);
    expectAt(26, -1, -0.25f, 0.05f);
    expectAt(27, -1.25f, -0.1875f, 0.07f);
    expectAt(20, -1, -0.025f, 0.05f);
    EXPECT_LT(points[21].x, -1.5f) << "the mesh's corners lie inside";
    // Brows are shorter and lower than the mesh draws them, and never cross.
    EXPECT_NEAR(points[29].x, -1.47f, 0.01f);
    EXPECT_NEAR(points[33].x, -0.5f, 1e-3f);
    EXPECT_NEAR(points[31].x, -0.985f, 1e-3f);
    EXPECT_NEAR(points[31].y, -0.8f + 0.075f, 1e-2f);
    EXPECT_NEAR(points[35].y, -1 + 0.04f, 1e-2f);
    expectAt(37, -0.8f, 2);
    expectAt(38, 0, 2.4f);
    expectAt(45, 0, 2.1f);
    expectAt(47, 0, 1.9f);
    expectAt(54, 0, 1.6f);
    expectAt(48, -0.16f, 2 - 0.4f * 4 * 0.4f * 0.6f);
    expectAt(55, -0.3f, 0.05f);
    // The contour begins at the eyes' level, leads down in even steps, and ends above the chin.
    expectAt(1, points[1].x, 0);
    EXPECT_LT(points[1].x, -1.85f);
    const auto step = [&](std::size_t i) {
        const Vector2f way = points[i == 9 ? 0 : i + 1] - points[i];
        return std::hypot(way.x, way.y);
    };
    for (std::size_t i = 1; i <= 9; ++i) EXPECT_NEAR(step(i), step(1), 0.03f) << i;
}

TEST(MeshLandmarks, TurnWithTheMeshAndTakePupilsFromIrises) {
    DrawnMesh drawn;
    const Landmarks upright = zel::meshLandmarks(drawn.mesh);
    const zel::Similarity turn{0.3f, 0.4f, 7, -2};
    for (Vector2f& p : drawn.mesh.points) p = turn(p);
    expectSame(zel::meshLandmarks(drawn.mesh), zel::moved(upright, turn), 1e-3f);
    drawn.mesh.irises = {{{1, 2}, {3, 4}}};
    const Landmarks withIrises = zel::meshLandmarks(drawn.mesh);
    EXPECT_EQ(withIrises[24].x, 1);
    EXPECT_EQ(withIrises[70].y, 4);
}

TEST(MeshLandmarks, ContourOfTheFarSideLiesAtTheCheeksEdge) {
    DrawnMesh drawn;
    // As on a face that is turned away: the outline of the left half has moved behind the brow and the lips.
    for (const short number : zel::kMeshOutline) {
        float& x = drawn.mesh.points[static_cast<std::size_t>(number)].x;
        if (x < 0) x *= 0.2f;
    }
    const Landmarks points = zel::meshLandmarks(drawn.mesh);
    for (std::size_t i = 1; i <= 5; ++i) EXPECT_LT(points[i].x, -0.75f) << i;
}

TEST(MeshLandmarks, OfACollapsedMeshAreFinite) {
    const Landmarks points = zel::meshLandmarks(FaceMesh{});
    for (const Vector2f p : points) EXPECT_TRUE(std::isfinite(p.x) && std::isfinite(p.y));
}

}  // namespace
