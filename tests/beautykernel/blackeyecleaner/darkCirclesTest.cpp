#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "beautykernel/blackeyecleaner/blackEyeCleaner.h"
#include "beautykernel/blackeyecleaner/circleTables.h"
#include "beautykernel/blackeyecleaner/darkCircles.h"
#include "beautykernel/blackeyecleaner/underEyeShape.h"
#include "support/guardedBytes.h"
#include "support/randomImage.h"
#include "support/standardFace.h"
#include "support/streamCapture.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using ZelImageCore::TableSkin;
using namespace zeltest;

constexpr int kWidth = 300, kHeight = 320;
const float kNaN = std::numeric_limits<float>::quiet_NaN();

/// The face of the tests: 90 pixels between the pupils.
Landmarks centredFace() {
    return standardFace(kWidth / 2.0f, 170.0f, 90.0f);
}

/// Even skin with a brown shadow below each eye.
Bytes shadowedSkin(const Landmarks& face) {
    const auto colour = [&](int x, int y) {
        float shadow = 0;
        for (std::size_t lid : {std::size_t{19}, std::size_t{65}}) {
            const float dx = (static_cast<float>(x) - face[lid].x) / 22.0f;
            const float dy = (static_cast<float>(y) - face[lid].y - 10.0f) / 9.0f;
            shadow = std::max(shadow, std::exp(-dx * dx - dy * dy));
        }
        const long dark = std::lround(50 * shadow);
        return std::array{205 - dark, 165 - dark, 140 - dark};
    };
    return drawnRgba(kWidth, kHeight, colour, 77);
}

void remove(Bytes& pixels, const Landmarks& face, float strength, int method,
            CGRect rect = {50, 60, 200, 220}) {
    OneFace points(face);
    TableSkin::ImageProcessWithAutoRemoveBlackCircle(pixels.data(), kWidth, kHeight, rect, &points, 0,
                                                     strength, method);
}

/// Mean distance to the skin without a shadow, in a box below one lid.
double darkness(const Bytes& pixels, const Landmarks& face, std::size_t lid) {
    double sum = 0;
    int count = 0;
    for (int y = static_cast<int>(face[lid].y) + 4; y < static_cast<int>(face[lid].y) + 18; ++y)
        for (int x = static_cast<int>(face[lid].x) - 14; x < static_cast<int>(face[lid].x) + 14; ++x, ++count)
            sum += 165 - pixels[static_cast<std::size_t>(y * kWidth + x) * 4 + 1];
    return sum / count;
}

TEST(UnderEyeShape, StaysInsideItsEndsAndTapers) {
    zellab::Plane<zellab::Byte> plane(80, 50);
    zellab::drawUnderEyeShape(plane.view(), {{10, 10}, {70, 10}, {40, 16}, 20});
    const auto columnHeight = [&](int x) {
        int n = 0;
        for (int y = 0; y < 50; ++y) n += plane.view().row(y)[x] != 0;
        return n;
    };
    EXPECT_NEAR(columnHeight(40), 20, 1);
    EXPECT_LT(columnHeight(12), columnHeight(25));
    EXPECT_LT(columnHeight(13), 11) << "the ends run out at a slant, not in an upright edge";
    for (int x : {0, 5, 9, 71, 79}) EXPECT_EQ(columnHeight(x), 0) << x;
    for (int x = 0; x < 80; ++x) {
        EXPECT_NEAR(columnHeight(x), columnHeight(80 - std::max(x, 1)), 2) << x;
        for (int y : {0, 5, 9, 38, 49}) EXPECT_EQ(plane.view().row(y)[x], 0) << x << ',' << y;
    }
}

TEST(UnderEyeShape, LeavesEverythingBesideThePlaneAlone) {
    GuardedBytes buffer(20 * 10, 0);
    const zellab::PlaneView<zellab::Byte> plane(buffer.data(), 20, 10);
    zellab::drawUnderEyeShape(plane, {{-50, -20}, {90, 4}, {20, 30}, 200});
    zellab::drawUnderEyeShape(plane, {{-1e9f, 0}, {1e9f, 0}, {0, 1e9f}, 5});
    EXPECT_TRUE(buffer.guardsIntact());
    std::fill_n(buffer.data(), buffer.size(), static_cast<unsigned char>(0));
    zellab::drawUnderEyeShape(plane, {{kNaN, 2}, {15, 2}, {10, 4}, 4});
    EXPECT_TRUE(buffer.allAre(0));
}

TEST(CircleTables, KeepTheirKnownValues) {
    const auto& curve = zellab::circleCoreCurve();
    const int first[] = {0, 1, 1, 2, 3, 3, 4, 5}, last[] = {250, 251, 252, 253, 253, 254, 254, 255};
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(curve[i], first[i]) << i;
        EXPECT_EQ(curve[248 + i], last[i]) << 248 + i;
    }
    EXPECT_TRUE(std::is_sorted(curve.begin(), curve.end()));
    EXPECT_LT(curve[128], 128 - 30);  // slowly up to the middle
    EXPECT_EQ(zellab::kPatchWeight[62], 0);
    EXPECT_EQ(zellab::kPatchWeight[63], 1);
    EXPECT_EQ(zellab::kPatchWeight[128], 128);
    EXPECT_TRUE(std::is_sorted(zellab::kPatchWeight.begin(), zellab::kPatchWeight.end()));
}

TEST(DarkCircles, FadeByStrengthUnderBothEyesAlike) {
    const Landmarks face = centredFace();
    const Bytes before = shadowedSkin(face);
    for (int method : {0, 1}) {
        double last = 1e9;
        for (float strength : {0.2f, 0.55f, 1.0f}) {
            Bytes pixels = before;
            remove(pixels, face, strength, method);
            const double left = darkness(pixels, face, 19), right = darkness(pixels, face, 65);
            EXPECT_LT(left, last) << method << ' ' << strength;
            EXPECT_NEAR(left, right, 1.5) << method << ' ' << strength;
            last = left;
        }
        EXPECT_LT(last, darkness(before, face, 19) * (method == 0 ? 0.75 : 0.5)) << method;
    }
}

TEST(DarkCircles, NothingHappensWithoutStrengthOrMethod) {
    const Landmarks face = centredFace();
    const Bytes before = shadowedSkin(face);
    OneFace points(face);
    Bytes pixels = before;
    for (float strength : {0.0f, -1.0f, kNaN}) {
        CGRect rect{-10, -20, 5000, 6000};
        TableSkin::ImageProcessWithAutoRemoveBlackCircle(pixels.data(), kWidth, kHeight, rect, &points, 0,
                                                         strength, 0);
        EXPECT_EQ(rect.width, 5000) << "strength 0 leaves the rectangle as it is";
    }
    for (int method : {-1, 2, 99}) remove(pixels, face, 1.0f, method);
    EXPECT_EQ(pixels, before);

    CGRect rect{-10, 20, 5000, kNaN};
    TableSkin::ImageProcessWithAutoRemoveBlackCircle(pixels.data(), kWidth, kHeight, rect, &points, 0, 1.0f,
                                                     2);
    EXPECT_EQ(rect.x, 0);
    EXPECT_EQ(rect.y, 20);
    EXPECT_EQ(rect.width, kWidth - 1);
    EXPECT_EQ(rect.height, 0);
}

/// The cheek's colour comes from a band that ends with the crop, here with the face's rectangle.
TEST(DarkCircles, WhatLiesBelowTheCropHasNoSay) {
    constexpr int kEnd = 190;
    const Landmarks face = centredFace();
    OneFace points(face);
    const auto repaired = [&](unsigned char below) {
        Bytes pixels = shadowedSkin(face);
        std::fill(pixels.begin() + kEnd * kWidth * 4, pixels.end(), below);
        zellab::removeDarkCircles({pixels.data(), kWidth, kHeight}, {50, 60, 200, kEnd - 60},
                                  points.GetInterPoints(0), 1.0f, zellab::kDarkCircleMethodA);
        pixels.resize(static_cast<std::size_t>(kEnd * kWidth) * 4);
        return pixels;
    };
    EXPECT_EQ(repaired(90), repaired(250));
}

TEST(DarkCircles, AFaceSmallerThanItsEyesIsLogged) {
    const Landmarks face = centredFace();
    const Bytes before = shadowedSkin(face);
    Bytes pixels = before;
    std::string log;
    {
        StreamCapture out(stdout);
        StreamCapture err(stderr);
        remove(pixels, face, 1.0f, 0, {150, 150, 20, 10});
        log = out.text() + err.text();
    }
    EXPECT_EQ(pixels, before);
    EXPECT_NE(log.find("ERROR: invalidate face data eyePixelCount = "), log.npos) << log;
    EXPECT_NE(log.find(" nFacePixelCount=200"), log.npos) << log;
    EXPECT_NE(log.find("78"), log.npos) << log;
    EXPECT_NE(log.find("blackeyecleaner"), log.npos) << log;
}

TEST(MarkedCircles, LightensWhatIsMarkedAndNothingFarAway) {
    const Landmarks face = centredFace();
    const Bytes before = shadowedSkin(face);
    Bytes byMask = before, byRect = before;
    Bytes mask(static_cast<std::size_t>(kWidth * kHeight), 0);
    float rect[] = {face[19].x - 35, face[19].y - 15, 70, 50};
    for (int y = static_cast<int>(face[19].y); y < static_cast<int>(face[19].y) + 20; ++y)
        for (int x = static_cast<int>(face[19].x) - 22; x < static_cast<int>(face[19].x) + 22; ++x)
            mask[static_cast<std::size_t>(y * kWidth + x)] = 255;
    TableSkin::ImageProcessWithRemoveBlackCircle(byMask.data(), kWidth, kHeight, mask.data(), nullptr, 1);
    TableSkin::ImageProcessWithRemoveBlackCircle(byRect.data(), kWidth, kHeight, nullptr, rect, 0);
    for (const Bytes* after : {&byMask, &byRect}) {
        EXPECT_LT(darkness(*after, face, 19), darkness(before, face, 19) * 0.8);
        EXPECT_EQ(darkness(*after, face, 65), darkness(before, face, 65));
    }
}

}  // namespace
