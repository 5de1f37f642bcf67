#include "zellab/imageproc/domaintransform/domainTransform.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "frame/processorCount.h"
#include "support/guardedBytes.h"
#include "support/noThreads.h"
#include "support/randomImage.h"

namespace {

using zellab::DomainTransformPlane;
using zellab::DomainTransformRGBA;
using zeltest::Bytes;

Bytes filtered(Bytes rgba, int width, float sigmaSpace, float sigmaRange, int iterations) {
    const int height = static_cast<int>(rgba.size()) / 4 / width;
    DomainTransformRGBA({rgba.data(), width, height}, sigmaSpace, sigmaRange, iterations, true);
    return rgba;
}

double roughness(const Bytes& rgba) {
    double sum = 0;
    for (std::size_t i = 4; i < rgba.size(); ++i)
        if (i % 4 != 3) sum += std::abs(rgba[i] - rgba[i - 4]);
    return sum;
}

TEST(DomainTransform, SmoothsFaintNoiseAndKeepsTheStrongEdge) {
    constexpr int kWidth = 60, kHeight = 50;
    Bytes picture = zeltest::randomRgba(kWidth, kHeight, 3);
    for (std::size_t i = 0; i < picture.size(); ++i)
        picture[i] = static_cast<unsigned char>((i / 4 % kWidth < 30 ? 10 : 230) + picture[i] % 8);
    const Bytes narrow = filtered(picture, kWidth, 4, 50, 3), wide = filtered(picture, kWidth, 16, 50, 3);
    EXPECT_LT(roughness(narrow), 0.8 * roughness(picture));
    EXPECT_LT(roughness(wide), roughness(narrow));
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (i % 4 == 3) {
            ASSERT_EQ(wide[i], picture[i]) << "alpha";
        } else {
            ASSERT_NEAR(wide[i], i / 4 % kWidth < 30 ? 13.5 : 233.5, 5) << "byte " << i;
        }
    }
}

// Feedback that is a whole power of one number can be followed by hand: sigma 5 over one pass gives
// a = exp(-sqrt 2 / 5) = 0.7536, here over two samples of equal difference 0 and 3 * 8.
TEST(DomainTransform, TwoSamplesByHand) {
    Bytes pair = {100, 108};
    DomainTransformPlane({pair.data(), 2, 1}, 5.0f, 1000.0f, 1, false);
    // Forth: 108 - trunc(8 * 0.7536) = 102. Back: 100 + trunc(2 * 0.7536) = 101.
    EXPECT_EQ(pair, (Bytes{101, 102}));
    // Difference 24 at ratio 5 / 120 is one more step: 0.7536 squared is 0.5679.
    Bytes apart = {100, 108};
    DomainTransformPlane({apart.data(), 2, 1}, 5.0f, 120.0f, 1, false);
    EXPECT_EQ(apart, (Bytes{102, 104}));
}

TEST(DomainTransform, FlatPicturesAndUselessArgumentsChangeNothing) {
    const Bytes flat(33 * 70 * 4, 120), noise = zeltest::randomRgba(33, 70, 5);
    EXPECT_EQ(filtered(flat, 33, 16, 50, 3), flat);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(filtered(noise, 33, 16, 50, 0), noise);
    EXPECT_EQ(filtered(noise, 33, 16, 50, -2), noise);
    EXPECT_EQ(filtered(noise, 33, 16, 50, INT_MAX), noise);
    EXPECT_EQ(filtered(noise, 33, 0, 50, 3), noise);
    EXPECT_EQ(filtered(noise, 33, nan, 50, 3), noise);
    EXPECT_EQ(filtered(noise, 33, 16, nan, 3), noise);
    Bytes same = noise;
    DomainTransformRGBA({nullptr, 33, 70}, 16, 50, 3, true);
    DomainTransformPlane({same.data(), 33, 0}, 16, 50, 3, true);
    EXPECT_EQ(same, noise);
}

TEST(DomainTransform, WithoutThreadsNoBandIsLeftAndTheLogSaysSo) {
    const zellab::WorkerCount workers(3);
    const Bytes noise = zeltest::randomRgba(90, 130, 6), expected = filtered(noise, 90, 16, 50, 3);
    const zeltest::NoThreads none;
    testing::internal::CaptureStderr();
    EXPECT_EQ(filtered(noise, 90, 16, 50, 3), expected);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("error creating thread.\r\n"), std::string::npos);
}

TEST(DomainTransform, OddShapesAndSigmasStayInside) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto& [width, height] :
         {std::pair{1, 1}, std::pair{1, 900}, std::pair{900, 1}, std::pair{17, 65}})
        for (float space : {1e-20f, 3.0f, 1e20f, infinity, -4.0f})
            for (float range : {0.0f, 1e-20f, 30.0f, -30.0f}) {
                zeltest::GuardedBytes rgba(static_cast<std::size_t>(width * height * 4));
                zeltest::GuardedBytes plane(static_cast<std::size_t>(width * height));
                for (std::size_t i = 0; i < rgba.size(); ++i)
                    rgba.data()[i] = static_cast<unsigned char>(i * 37);
                for (std::size_t i = 0; i < plane.size(); ++i)
                    plane.data()[i] = static_cast<unsigned char>(i * 37);
                DomainTransformRGBA({rgba.data(), width, height}, space, range, 2, true);
                DomainTransformPlane({plane.data(), width, height}, space, range, 2, true);
                ASSERT_TRUE(rgba.guardsIntact() && plane.guardsIntact());
            }
}

}  // namespace
