// The library's own two scalers, which share most of what can be said about a scaler.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/processorCount.h"
#include "support/guardedBytes.h"
#include "support/noThreads.h"
#include "support/randomImage.h"
#include "support/views.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/resample/imageResampler.h"
#include "zellab/imageproc/resample/resamplePhases.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"

namespace {

using zellab::sampleCount;
using namespace zeltest;

constexpr int kQualities[] = {0, 1, 2, 3};

bool scaleBilinear(const unsigned char* source, int sw, int sh, unsigned char* target, int tw, int th,
                   int channels) {
    return withViews(source, sw, sh, target, tw, th, channels,
                     [](auto from, auto to) { return zellab::ScaleBilinearThreaded(from, to); });
}

bool resample(const unsigned char* source, int sw, int sh, unsigned char* target, int tw, int th,
              int channels, int quality) {
    return withViews(source, sw, sh, target, tw, th, channels,
                     [=](auto from, auto to) { return zellab::ImageResampler().Resize(from, to, quality); });
}

Bytes resize(const Bytes& source, int sw, int sh, int tw, int th, int channels, int quality) {
    Bytes target(sampleCount(tw, th, channels));
    EXPECT_TRUE(resample(source.data(), sw, sh, target.data(), tw, th, channels, quality));
    return target;
}

// Rounding of weights, ends that are read twice and margins all show as a constant that moves.
TEST(Scalers, AConstantStaysAndNothingBesideTheTargetIsWritten) {
    constexpr unsigned char kValue = 201;
    const int sizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 31, 33, 70};
    for (int from : sizes)
        for (int to : sizes)
            for (int channels : {1, 4}) {
                SCOPED_TRACE(testing::Message() << from << " to " << to << ", channels " << channels);
                const int sh = (from * 3) % 71, th = (to * 5) % 71;
                const Bytes source(sampleCount(from, sh, channels), kValue);
                GuardedBytes bilinear(sampleCount(to, th, channels));
                if (from == to && sh == th) continue;
                ASSERT_TRUE(scaleBilinear(source.data(), from, sh, bilinear.data(), to, th, channels));
                ASSERT_TRUE(bilinear.guardsIntact());
                for (std::size_t i = 0; i < bilinear.size(); ++i)
                    ASSERT_EQ(bilinear[i], channels == 4 && i % 4 == 3 ? 255 : kValue);
                for (int quality : kQualities) {
                    GuardedBytes target(sampleCount(to, th, channels));
                    ASSERT_TRUE(resample(source.data(), from, sh, target.data(), to, th, channels, quality));
                    ASSERT_TRUE(target.guardsIntact() && target.allAre(kValue)) << "quality " << quality;
                }
            }
}

TEST(Scalers, WithoutThreadsNoRowIsLeftAndTheLogSaysSo) {
    const zellab::WorkerCount workers(3);
    const Bytes source = randomRgba(90, 80, 4);
    const auto both = [&] {
        Bytes target(sampleCount(120, 200, 4));
        EXPECT_TRUE(scaleBilinear(source.data(), 90, 80, target.data(), 120, 200, 4));
        return std::pair{target, resize(source, 90, 80, 120, 200, 4, 3)};
    };
    const auto expected = both();
    const NoThreads none;
    testing::internal::CaptureStderr();
    EXPECT_EQ(both(), expected);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("error creating thread.1"), log.npos);
    EXPECT_NE(log.find("error creating thread.2"), log.npos);
}

TEST(ImageResampler, WeightsSumToOneAndPositionsRise) {
    const int sizes[] = {1, 2, 3, 16, 70, 719, 5000};
    for (int source : sizes)
        for (int target : sizes)
            for (int quality : kQualities) {
                SCOPED_TRACE(testing::Message() << source << " to " << target << ", quality " << quality);
                const zellab::AxisFilter filter = zellab::buildAxisFilter(source, target, quality);
                ASSERT_EQ(filter.first.size(), static_cast<std::size_t>(target));
                for (std::size_t i = 0; i < filter.first.size(); ++i) {
                    int sum = 0;
                    for (int k = 0; k < filter.rowLength; ++k) sum += filter.weightsOf(i)[k];
                    ASSERT_EQ(sum, zellab::kWeightSum);
                    ASSERT_TRUE(i == 0 || filter.first[i] >= filter.first[i - 1]);
                }
            }
}

// Detail finer than the target can show must turn into its mean instead of into false patterns.
TEST(ImageResampler, ShrinkingAveragesACheckerboard) {
    constexpr int kSide = 256;
    const Bytes source = drawnPlane(kSide, kSide, [](int x, int y) { return (x ^ y) & 1 ? 255 : 0; });
    for (int quality : {1, 2, 3})
        for (int side : {150, 100, 61, 7}) {
            const Bytes small = resize(source, kSide, kSide, side, side, 1, quality);
            for (int y = 2; y < side - 2; ++y)
                for (int x = 2; x < side - 2; ++x)
                    ASSERT_NEAR(small[static_cast<std::size_t>(y * side + x)], 127.5, 8)
                        << "quality " << quality << ", side " << side;
        }
}

// Upscaling by a whole number passes through the samples' neighbourhood without shifting the picture.
TEST(ImageResampler, EnlargingThenShrinkingGivesBackASmoothPicture) {
    constexpr int kSide = 60;
    const Bytes source = drawnPlane(
        kSide, kSide, [](int x, int y) { return 128 + 50 * std::sin(x * 0.2) + 40 * std::cos(y * 0.15); });
    for (int quality : {1, 2, 3}) {
        const Bytes large = resize(source, kSide, kSide, 3 * kSide, 3 * kSide, 1, quality);
        const Bytes back = resize(large, 3 * kSide, 3 * kSide, kSide, kSide, 1, quality);
        EXPECT_LE(differenceOf(source, back).largest, 4) << "quality " << quality;
    }
}

}  // namespace
