#include "zel_effects/interFacePoint.h"

#include <gtest/gtest.h>

#include <array>

using zellab::CInterFacePoint;
using zellab::Vector2f;

namespace {

std::array<Vector2f, CInterFacePoint::kLandmarkCount> someLandmarks() {
    std::array<Vector2f, CInterFacePoint::kLandmarkCount> points;
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {100.0f + static_cast<float>(i), 200.0f - static_cast<float>(i)};
    return points;
}

TEST(InterFacePoint, AFaceAboveTheEndLeavesTheSlotsBetweenNull) {
    CInterFacePoint faces;
    faces.AddFace(someLandmarks().data(), 2);
    EXPECT_EQ(faces.GetInterPoints(0), nullptr);
    EXPECT_EQ(faces.GetInterPoints(1), nullptr);
    EXPECT_NE(faces.GetInterPoints(2), nullptr);
}

TEST(InterFacePoint, NullListsAndNegativeIndicesDoNothing) {
    CInterFacePoint faces;
    faces.AddFace(nullptr, 0);
    faces.AddFace(someLandmarks().data(), -1);
    faces.AddFace(someLandmarks().data(), 0);
    EXPECT_NE(faces.GetInterPoints(0), nullptr);
}

TEST(InterFacePoint, AnIndexOutOfRangeSelectsFaceZero) {
    EXPECT_EQ(zellab::clampFaceIndex(-1, 3), 0);
    EXPECT_EQ(zellab::clampFaceIndex(2, 3), 2);
    EXPECT_EQ(zellab::clampFaceIndex(3, 3), 0);
}

}  // namespace
