#include <gtest/gtest.h>

#include <algorithm>

#include "../meshCover.h"
#include "ZelEffectsCore/ZelEffect/FaceSlimRender/faceMeshWarp.h"
#include "support/randomImage.h"
#include "support/standardFace.h"
#include "zel_effects/zel_effects.h"

namespace {

using zellab::CInterFacePoint;
using zellab::FaceMeshWarp;
using zellab::FaceSlimFactors;
using zellab::Vector2f;
using namespace zeltest;

constexpr int kWidth = 300, kHeight = 360;
constexpr std::size_t kRing = FaceMeshWarp::kRingVertices;

Landmarks face() {
    return standardFace(150, 190, 62);
}
/// A face whose nose points aside, towards one cheek's contour.
Landmarks turned(float noseShift) {
    Landmarks landmarks = face();
    landmarks[64].x += noseShift;
    return landmarks;
}

FaceMeshWarp meshOf(const Landmarks& landmarks) {
    return FaceMeshWarp(OneFace(landmarks).list());
}

Bytes slimmed(Bytes picture, CInterFacePoint& points, float strength, int faceIndex = 0) {
    EXPECT_TRUE(CFaceSlimRender::autoSlimFace(picture.data(), kWidth, kHeight, &points, strength, faceIndex));
    return picture;
}

std::vector<std::size_t> movedVertices(const FaceMeshWarp& mesh) {
    std::vector<std::size_t> moved;
    for (std::size_t i = 0; i < FaceMeshWarp::kVertexCount; ++i)
        if (mesh.source()[i].x != mesh.target()[i].x || mesh.source()[i].y != mesh.target()[i].y)
            moved.push_back(i);
    return moved;
}

TEST(FaceSlimMesh, TrianglesTileTheRingsWithoutOverlap) {
    const auto triangles = FaceMeshWarp::triangles();
    EXPECT_GE(*std::min_element(triangles.begin(), triangles.end()), 6);
    EXPECT_LE(*std::max_element(triangles.begin(), triangles.end()), 229);
    const FaceMeshWarp mesh = meshOf(face());
    expectNoOverlap(kWidth, kHeight, mesh.source().data(), triangles);
    // No hole along the drawn part of each ring: halfway between the fixed rings and the ones next to them.
    for (std::size_t i : {8, 17, 20, 24, 27, 31, 35, 39, 43, 45})
        for (const auto& [a, b] : {std::pair{4 * kRing, 0 * kRing},
                                   {0 * kRing, kRing},
                                   {kRing, 2 * kRing},
                                   {2 * kRing, 3 * kRing}}) {
            const Vector2f u = mesh.source()[a + i], v = mesh.source()[b + i];
            const Vector2f p{u.x * 0.47f + v.x * 0.53f + 0.11f, u.y * 0.47f + v.y * 0.53f + 0.13f};
            EXPECT_EQ(coverage(p, mesh.source().data(), triangles), 1) << a + i;
        }
}

TEST(FaceSlimMesh, RingsScaleTheOutlineAndStandWhereTheyShould) {
    const FaceMeshWarp mesh = meshOf(face());
    const Vector2f centre = mesh.source()[5 * kRing];
    const float scales[5] = {1.0f, 1.1f, 1.2f, 1.3f, 0.9f};
    for (std::size_t ring = 0; ring < 5; ++ring)
        for (std::size_t i = 0; i < kRing; ++i) {
            const Vector2f base = mesh.source()[i], v = mesh.source()[ring * kRing + i];
            EXPECT_NEAR(v.x, centre.x + (base.x - centre.x) * scales[ring], 1e-3);
            EXPECT_NEAR(v.y, centre.y + (base.y - centre.y) * scales[ring], 1e-3);
        }
    const Landmarks landmarks = face();
    EXPECT_NEAR(mesh.source()[31].x, landmarks[0].x, 2.0f);  // the chin is not quite midway of its curve
    // Top of the forehead: the chin mirrored about the eyes, in x by 2 and in y by 1.8.
    const float eyesX = (landmarks[25].x + landmarks[67].x) / 2,
                eyesY = (landmarks[25].y + landmarks[67].y) / 2;
    EXPECT_NEAR(mesh.source()[0].x, 2 * eyesX - landmarks[0].x, 0.3f);
    EXPECT_NEAR(mesh.source()[0].y, landmarks[0].y + 1.8f * (eyesY - landmarks[0].y), 0.3f);
}

TEST(FaceSlimMesh, MovesTheContourInwardsByPose) {
    const auto expectMoved = [](const Landmarks& landmarks, const std::vector<std::size_t>& positions) {
        FaceMeshWarp mesh = meshOf(landmarks);
        FaceSlimFactors factors;
        factors.strength = 0.8f;
        mesh.deform(factors, kWidth, kHeight);
        std::vector<std::size_t> expected;
        for (std::size_t ring = 0; ring < 3; ++ring)
            for (std::size_t i : positions) expected.push_back(ring * kRing + i);
        EXPECT_EQ(movedVertices(mesh), expected);
        return mesh;
    };
    std::vector<std::size_t> both = {7, 8}, first = {7, 8}, second = {15, 16};
    for (std::size_t i = 15; i <= 45; ++i) both.push_back(i);
    for (std::size_t i = 17; i <= 31; ++i) first.push_back(i);
    for (std::size_t i = 31; i <= 45; ++i) second.push_back(i);
    const FaceMeshWarp mesh = expectMoved(face(), both);
    expectMoved(turned(27), first);
    expectMoved(turned(-29), second);
    const float left = mesh.target()[24].x - mesh.source()[24].x,
                right = mesh.target()[38].x - mesh.source()[38].x;
    EXPECT_GT(left, 1.0f);
    EXPECT_LT(right, -1.0f);
    EXPECT_GT(mesh.target()[31].y, mesh.source()[31].y);  // the chin moves out
}

TEST(FaceSlimMesh, AContourVertexOutsideThePictureStays) {
    FaceMeshWarp mesh = meshOf(face());
    FaceSlimFactors factors;
    factors.strength = 1;
    const int narrow = static_cast<int>(mesh.source()[kRing + 38].x);
    mesh.deform(factors, narrow, kHeight);
    for (std::size_t i : movedVertices(mesh)) EXPECT_LT(mesh.source()[i].x, static_cast<float>(narrow));
}

TEST(AutoSlimFace, ChangesTheRingsAlone) {
    const Bytes before = patternRgba(kWidth, kHeight, 3);
    OneFace points(face());
    const FaceMeshWarp mesh(points.list());
    const Bytes after = slimmed(before, points, 1.0f);
    const std::size_t changed =
        changesOnTheMesh(before, after, kWidth, mesh.source().data(), FaceMeshWarp::triangles());
    EXPECT_GT(changed, 5000u);
}

TEST(AutoSlimFace, PicksTheFaceAndSucceedsQuietlyOnBadInput) {
    const Bytes before = patternRgba(kWidth, kHeight, 3);
    CInterFacePoint two, none;
    two.AddFace(face().data(), 0);
    two.AddFace(standardFace(80, 90, 30).data(), 1);
    two.SetFaceCount(2);
    const Bytes first = slimmed(before, two, 0.5f, 0);
    EXPECT_TRUE(slimmed(before, two, 0.5f, 7) == first);
    EXPECT_TRUE(slimmed(before, two, 0.5f, -1) == first);
    EXPECT_FALSE(slimmed(before, two, 0.5f, 1) == first);
    EXPECT_FALSE(slimmed(before, two, 0.0f, 0) == before);  // the chin does not follow the strength
    EXPECT_TRUE(slimmed(before, none, 0.5f) == before);
    two.SetFaceCount(5);  // promises more than was added
    EXPECT_TRUE(slimmed(before, two, 0.5f, 4) == before);
    EXPECT_TRUE(slimmed(before, two, std::nanf("")) == before);
}

TEST(SlimFace, ChecksItsRadiusAndSaysSo) {
    Bytes picture = patternRgba(100, 50, 3);
    const Bytes before = picture;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(CFaceSlimRender::slimFace(picture.data(), 100, 50, 0.3f, 0.5f, 0.6f, 0.5f, 0.0199f, 80));
    EXPECT_FALSE(CFaceSlimRender::slimFace(picture.data(), 100, 0, 0.3f, 0.5f, 0.6f, 0.5f, 0.1f, 80));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("ERROR:CFaceSlimRender slimface,radius(1.99) should not be less than 2"), log.npos);
    EXPECT_NE(log.find("input data is NULL width=100 height=0"), log.npos);
    EXPECT_TRUE(CFaceSlimRender::slimFace(picture.data(), 100, 50, 1.2f, 0.5f, 0.6f, 0.5f, 0.1f, 80));
    EXPECT_TRUE(CFaceSlimRender::slimFace(picture.data(), 100, 50, 0.3f, 0.5f, 0.6f, 0.5f, 0.1f, 0.9f));
    EXPECT_TRUE(
        CFaceSlimRender::slimFace(picture.data(), 100, 50, 0.3f, 0.5f, 0.6f, 0.5f, 0.1f, std::nanf("")));
    EXPECT_TRUE(
        CFaceSlimRender::slimFace(picture.data(), 100, 50, 0.3f, 0.5f, 0.6f, 0.5f, std::nanf(""), 80));
    EXPECT_TRUE(picture == before);
    EXPECT_TRUE(CFaceSlimRender::slimFace(picture.data(), 100, 50, 0.3f, 0.5f, 0.4f, 0.5f, 0.02f, 80));
    EXPECT_FALSE(picture == before);
}

// What lay at the start is found further on, towards the end of the drag.
TEST(SlimFace, PushesFromStartToEnd) {
    Bytes picture(100 * 60 * 4, 200);
    const auto red = [&](int x, int y) -> unsigned char& {
        return picture[static_cast<std::size_t>(y * 100 + x) * 4];
    };
    for (int y = 25; y < 35; ++y) red(50, y) = red(51, y) = red(52, y) = 0;
    CFaceSlimRender::slimFace(picture.data(), 100, 60, 0.51f, 0.5f, 0.57f, 0.5f, 0.2f, 100);
    int darkest = 0;
    for (int x = 1; x < 100; ++x)
        if (red(x, 30) < red(darkest, 30)) darkest = x;
    EXPECT_GT(darkest, 53);
    EXPECT_LT(darkest, 60);
}

}  // namespace
