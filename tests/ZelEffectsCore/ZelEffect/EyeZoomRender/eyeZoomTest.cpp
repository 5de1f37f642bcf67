#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "../meshCover.h"
#include "ZelEffectsCore/ZelEffect/EyeZoomRender/eyeMeshWarp.h"
#include "support/randomImage.h"
#include "support/standardFace.h"
#include "zel_effects/zel_effects.h"

namespace {

using zellab::EyeMeshWarp;
using zellab::Vector2f;
using zeltest::Bytes;

constexpr int kWidth = 300, kHeight = 360;

struct OneFace : zeltest::OneFace {
    OneFace() : zeltest::OneFace(zeltest::standardFace(150, 190, 80)) {}
};

TEST(EyeZoomMesh, TrianglesTileEyesAndRingsWithoutOverlap) {
    const auto triangles = EyeMeshWarp::triangles();
    EXPECT_LE(*std::max_element(triangles.begin(), triangles.end()), 79);
    const OneFace face;
    const EyeMeshWarp mesh(face.list(), {});
    zeltest::expectNoOverlap(kWidth, kHeight, mesh.source().data(), triangles);
    for (std::size_t i = 0; i < 40; ++i) {
        const Vector2f u = mesh.source()[i], v = mesh.source()[40 + i];
        EXPECT_EQ(zeltest::coverage({u.x * 0.52f + v.x * 0.48f + 0.03f, u.y * 0.52f + v.y * 0.48f + 0.02f},
                                    mesh.source().data(), triangles),
                  1)
            << i;
    }
}

TEST(EyeZoomMesh, ScalesTheOutlinesByTheEyesShareOfTheFace) {
    const OneFace face;
    const Vector2f* p = face.list();
    ASSERT_NE(p, nullptr);
    const EyeMeshWarp mesh(p, {0.8f, 0.9f, 0.2f, 1.5f});
    const auto distance = [p](std::size_t a, std::size_t b) {
        return std::hypot(p[a].x - p[b].x, p[a].y - p[b].y);
    };
    const float zoom = (0.9f - (distance(0, 5) + distance(10, 15)) / distance(89, 107)) * 0.8f * 0.2f;
    for (std::size_t eye = 0; eye < 2; ++eye) {
        const Vector2f* q = p + 10 * eye;
        const Vector2f centre{(q[7].x + q[3].x + q[8].x + q[2].x) / 4,
                              (q[7].y + q[3].y + q[8].y + q[2].y) / 4};
        for (std::size_t i = 20 * eye; i < 20 * eye + 20; ++i) {
            const Vector2f v = mesh.source()[i];
            // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): a mesh has its points
            EXPECT_NEAR(mesh.target()[i].x - v.x, (v.x - centre.x) * zoom, 1e-3);
            EXPECT_NEAR(mesh.source()[40 + i].y - v.y, (v.y - centre.y) * 1.5f, 1e-3);
            EXPECT_EQ(mesh.source()[40 + i].y, mesh.target()[40 + i].y);
        }
        // The outline passes through the points of the list: corners at 0 and 10, lids between.
        EXPECT_NEAR(mesh.source()[20 * eye + 4].x, q[2].x, 1e-3);
        EXPECT_NEAR(mesh.source()[20 * eye + 10].y, q[5].y, 1e-3);
        EXPECT_NEAR(mesh.source()[20 * eye + 12].x, q[9].x, 1e-3);
    }
}

TEST(AutoZoomEye, LeavesThePictureWithoutAZoomAndBeyondTheRings) {
    OneFace face;
    const Bytes before = zeltest::patternRgba(kWidth, kHeight, 5);
    Bytes still = before, zoomed = before;
    EXPECT_TRUE(CEyeZoomRender::autoZoomEye(still.data(), kWidth, kHeight, &face, 0, 0));
    EXPECT_TRUE(still == before);
    EXPECT_TRUE(CEyeZoomRender::autoZoomEye(zoomed.data(), kWidth, kHeight, &face, 2, 0));
    const EyeMeshWarp mesh(face.list(), {});
    const std::size_t changed =
        zeltest::changesOnTheMesh(before, zoomed, kWidth, mesh.source().data(), EyeMeshWarp::triangles());
    EXPECT_GT(changed, 300u);
}

TEST(ZoomEye, EnlargesAnIrisAndKeepsItRound) {
    constexpr int kSide = 161, kCentre = 80, kIris = 20;
    Bytes picture(static_cast<std::size_t>(kSide * kSide * 4), 220);
    const auto red = [&](int x, int y) -> unsigned char& {
        return picture[static_cast<std::size_t>(y * kSide + x) * 4];
    };
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            if (std::hypot(x - kCentre, y - kCentre) <= kIris) red(x, y) = 20;
    const float middle = (kCentre + 0.5f) / kSide;
    ASSERT_TRUE(CEyeZoomRender::zoomEye(picture.data(), kSide, kSide, {middle, middle}, 0.35f, 100));
    const auto reach = [&](double angle) {
        int r = 0;
        while (red(kCentre + static_cast<int>(std::lround(r * std::cos(angle))),
                   kCentre + static_cast<int>(std::lround(r * std::sin(angle)))) < 120)
            ++r;
        return r;
    };
    int low = kSide, high = 0;
    for (int i = 0; i < 32; ++i) {
        const int r = reach(i * 3.14159265 / 16);
        low = std::min(low, r);
        high = std::max(high, r);
    }
    EXPECT_GT(low, kIris);
    EXPECT_LE(high - low, 1);
}

TEST(ZoomEye, ChecksItsArgumentsAndShrinksByANegativeStrength) {
    Bytes picture = zeltest::patternRgba(100, 50, 3);
    const Bytes before = picture;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(CEyeZoomRender::zoomEye(picture.data(), 100, 50, {0.5f, 0.5f}, 0.0199f, 80));
    EXPECT_FALSE(CEyeZoomRender::zoomEye(nullptr, 100, 50, {0.5f, 0.5f}, 0.1f, 80));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("ERROR:CEyeZoomRender zoomEye,radius(1.99) should not be less than 2"), log.npos);
    EXPECT_NE(log.find("ERROR:CEyeZoomRender zoomEye,input data is NULL width=100 height=50"), log.npos);
    EXPECT_TRUE(CEyeZoomRender::zoomEye(picture.data(), 100, 50, {0.5f, 0.5f}, 0.1f, 0));
    EXPECT_TRUE(CEyeZoomRender::zoomEye(picture.data(), 100, 50, {1.0f, 0.5f}, 0.1f, 80));
    EXPECT_TRUE(picture == before);
    Bytes grown = before, shrunk = before;
    EXPECT_TRUE(CEyeZoomRender::zoomEye(grown.data(), 100, 50, {0.5f, 0.5f}, 0.2f, 80));
    EXPECT_TRUE(CEyeZoomRender::zoomEye(shrunk.data(), 100, 50, {0.5f, 0.5f}, 0.2f, -80));
    EXPECT_FALSE(grown == before || shrunk == before || grown == shrunk);
}

}  // namespace
