#include "facepoints/faceData.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace zellab;

TEST(FaceData, TheBoxIsLimitedToThePicture) {
    CInterFacePoint points;
    points.AddFace(std::array<Vector2f, 83>{}.data(), 0);
    const auto boxOf = [&](CGRect rect) {
        const FaceData face = makeFaceData(rect, points, 0, 100, 80);
        return std::array<int, 4>{face.left, face.top, face.right, face.bottom};
    };
    EXPECT_EQ(boxOf({10.7f, 20.2f, 30.0f, 40.0f}), (std::array<int, 4>{10, 20, 39, 59}));
    EXPECT_EQ(boxOf({-5.0f, -6.0f, 1000.0f, 2.0f}), (std::array<int, 4>{0, 0, 100, 0}));
    EXPECT_EQ(boxOf({NAN, 1e30f, NAN, -1e30f}), (std::array<int, 4>{0, 80, 0, 0}));
}

TEST(FaceData, LandmarksScaleByWidthAndHeight) {
    ImageCoreFace face{};
    face.rect[2] = 0.5f;
    face.points[82][0] = 0.25f;
    face.points[82][1] = 1.5f;
    EXPECT_EQ(faceRectInPixels(face, 200, 100).width, 100.0f);
    const Vector2f last = landmarksInPixels(face, 200, 100)[82];
    EXPECT_EQ(last.x, 50.0f);
    EXPECT_EQ(last.y, 150.0f);
}

}  // namespace
