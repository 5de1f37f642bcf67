#include "zellab/imageproc/blur/stackBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <functional>
#include <string>
#include <thread>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "support/randomImage.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlurLanes.h"

namespace {

using zellab::CStackBlur;
using zellab::WorkerCount;
using zellab::platform::SimdLevel;
using zellab::platform::SimdLimit;
using zeltest::Bytes;

/// A member of the family, and what it does with a byte of a pixel.
struct Member {
    const char* name;
    std::function<void(unsigned char*, int width, int height, int radius)> blur;
    std::size_t channels;
    bool (*writes)(std::size_t channel);
};

const Member kMembers[] = {
    {"gray",
     [](auto* p, int w, int h, int r) {
         CStackBlur::StackBlurExGray({p, w, h}, r, 2);
     },
     1, [](std::size_t) { return true; }},
    {"rgba",
     [](auto* p, int w, int h, int r) {
         CStackBlur::StackBlurExOptimized({p, w, h}, r, 2);
     },
     4, [](std::size_t channel) { return channel < 3; }},
    {"all",
     [](auto* p, int w, int h, int r) {
         zellab::StackBlurAllChannels({p, w, h}, r);
     },
     4, [](std::size_t) { return true; }},
    {"mask",
     [](auto* p, int w, int h, int r) {
         zellab::MaskStackBlur({p, w, h}, r);
     },
     4, [](std::size_t channel) { return channel == 0; }},
};

Bytes randomFor(const Member& member, int width, int height) {
    return zeltest::randomBytes(zellab::sampleCount(width, height, static_cast<int>(member.channels)),
                                static_cast<unsigned>(width * 131 + height));
}

const int kSizes[][2] = {{1, 1}, {1, 70}, {70, 1}, {2, 2}, {15, 33}, {17, 9}, {64, 16}, {129, 131}};

// A row of one bright sample, worked by hand: along x the weights 1 2 1 of radius 1, by 4, truncated. Along y
// the only row repeats and stays.
TEST(StackBlur, OneBrightSampleSpreadsAsATriangle) {
    Bytes row = {0, 0, 0, 255, 0, 0, 0};
    CStackBlur::StackBlurExGray({row.data(), 7, 1}, 1, 1);
    EXPECT_EQ(row, (Bytes{0, 0, 63, 127, 63, 0, 0}));
    // At the edge the repeats weigh in: (2 + 1) * 255 / 4.
    Bytes edge = {255, 0, 0};
    CStackBlur::StackBlurExGray({edge.data(), 3, 1}, 1, 1);
    EXPECT_EQ(edge, (Bytes{191, 63, 0}));
}

// With the radius far beyond the line both ends weigh almost the same: 255 * (1/2 - a little), truncated.
// The window's sum passes 32 bits here, and at the last two radii 64.
TEST(StackBlur, RadiiFarBeyondTheLineAverageItsEnds) {
    for (int radius : {2900, 5000, 100'000, 190'000'000, INT_MAX}) {
        Bytes row = {0, 255};
        CStackBlur::StackBlurExGray({row.data(), 2, 1}, radius, 1);
        EXPECT_EQ(row, (Bytes{127, 127})) << radius;
    }
}

// The exact quotient turns at multiples of the divisor and nowhere else; the rounded product is monotone, so
// these sums decide all others.
TEST(StackBlur, ReciprocalsDivideExactlyAtEveryTurn) {
    for (int reach = 1; reach <= zellab::kLast32BitReach; ++reach) {
        const int divisor = reach * reach;
        const float above = zellab::reciprocalFromAbove(reach), below = zellab::reciprocalFromBelow(reach);
        for (int q = 0; q < 256; ++q)
            for (int sum : {q * divisor, q * divisor + (q < 255 ? divisor - 1 : 0)}) {
                if (reach <= zellab::kLastSingleReach) {
                    ASSERT_EQ(static_cast<int>(static_cast<float>(sum) * above), q) << reach;
                }
                const int estimate = static_cast<int>(static_cast<float>(sum) * below);
                ASSERT_TRUE(estimate == q || estimate == q - 1) << reach << ' ' << sum;
            }
    }
}

TEST(StackBlur, WorkersAndVectorFormsChangeNothing) {
    const int sizes[][2] = {{1, 300}, {300, 1}, {131, 117}, {1030, 75}, {90, 700}};
    for (const Member& member : kMembers)
        for (const auto& [width, height] : sizes)
            for (int radius : {1, 12, 90, 158, 159, 160, 161, 1500, 2900}) {
                SCOPED_TRACE(testing::Message()
                             << member.name << ' ' << width << 'x' << height << " radius " << radius);
                const Bytes image = randomFor(member, width, height);
                Bytes expected;
                for (SimdLevel level : {SimdLevel::baseline, SimdLevel::avx2})
                    for (int workers : {1, 2, 3, 8}) {
                        const SimdLimit limit(level);
                        const WorkerCount count(workers);
                        Bytes result = image;
                        if (member.name == std::string("rgba"))
                            CStackBlur::StackBlurExOptimized({result.data(), width, height}, radius, workers);
                        else if (member.name == std::string("gray"))
                            CStackBlur::StackBlurExGray({result.data(), width, height}, radius, workers);
                        else
                            member.blur(result.data(), width, height, radius);
                        if (expected.empty()) expected = result;
                        ASSERT_EQ(result, expected) << workers << " workers";
                    }
            }
}

TEST(StackBlur, StaysInsideTheBuffer) {
    constexpr std::size_t kMargin = 4096;
    for (const Member& member : kMembers)
        for (const auto& [width, height] : kSizes)
            for (int radius : {1, 9, 1000}) {
                Bytes image = randomFor(member, width, height);
                Bytes framed(image.size() + 2 * kMargin, 0x66);
                std::copy(image.begin(), image.end(), framed.begin() + kMargin);
                member.blur(framed.data() + kMargin, width, height, radius);
                member.blur(image.data(), width, height, radius);
                const auto begin = framed.begin() + kMargin, end = framed.end() - kMargin;
                EXPECT_TRUE(std::equal(begin, end, image.begin(), image.end())) << member.name;
                const auto isFrame = [](unsigned char b) { return b == 0x66; };
                EXPECT_TRUE(std::all_of(framed.begin(), begin, isFrame)) << member.name;
                EXPECT_TRUE(std::all_of(end, framed.end(), isFrame)) << member.name;
            }
}

TEST(StackBlur, TheEntryLimitsTheRadiusByTheShorterSide) {
    struct Case {
        int width, height, radius, used;
    };
    // Half of 60 is 30, half of that 15: above it (30 - 1) / 2 is used.
    for (const Case& c : {Case{100, 60, 20, 14},
                          {100, 60, 15, 15},
                          {60, 100, 16, 14},
                          {100, 60, INT_MAX, 14},
                          {101, 103, 26, 24},
                          {4, 90, 1, 1},
                          {4, 90, 2, 0},
                          {3, 90, 1, 0},
                          {1, 1, 5, 0},
                          {50, 50, 0, 0},
                          {50, 50, -3, 0}}) {
        SCOPED_TRACE(testing::Message() << c.width << 'x' << c.height << " radius " << c.radius);
        const Bytes rgba = zeltest::randomRgba(c.width, c.height, 3);
        Bytes entry = rgba, exported = rgba, direct = rgba;
        zellab::StackBlurRGBA({entry.data(), c.width, c.height}, c.radius);
        ZelImageCore::TableBase::ImageProcessWithGaussBlur(exported.data(), c.width, c.height, c.radius);
        CStackBlur::StackBlurExOptimized({direct.data(), c.width, c.height}, c.used, 1);
        EXPECT_EQ(entry, direct);
        EXPECT_EQ(exported, direct);
        const Bytes plane = zeltest::randomPlane(c.width, c.height, 3);
        Bytes gray = plane, directGray = plane;
        zellab::StackBlurGray({gray.data(), c.width, c.height}, c.radius);
        CStackBlur::StackBlurExGray({directGray.data(), c.width, c.height}, c.used, 1);
        EXPECT_EQ(gray, directGray);
    }
}

// A plane of five rows is the lowest that could be halved: the lower half would begin above the plane.
TEST(StackBlur, FiveLongRowsAreBlurredAsOne) {
    const Bytes plane = zeltest::randomPlane(7300, 5, 2);
    Bytes one = plane, two = plane;
    CStackBlur::StackBlurExGray({one.data(), 7300, 5}, 1, 1);
    const WorkerCount workers(2);
    zellab::StackBlurGray({two.data(), 7300, 5}, 1);
    EXPECT_EQ(one, two);
}

TEST(StackBlur, BadInputLeavesThePicture) {
    const Bytes image = zeltest::randomRgba(20, 20, 4);
    Bytes work = image;
    for (const Member& member : kMembers) {
        member.blur(nullptr, 20, 20, 3);
        for (const auto& [width, height, radius] : {std::array{0, 20, 3},
                                                    {20, 0, 3},
                                                    {-1, 20, 3},
                                                    {20, INT_MIN, 3},
                                                    {20, 20, -1},
                                                    {20, 20, INT_MIN}})
            member.blur(work.data(), width, height, radius);
    }
    ZelImageCore::TableBase::ImageProcessWithGaussBlur(nullptr, 20, 20, 3);
    EXPECT_EQ(work, image);
}

TEST(StackBlur, EightCallsAtOnceGiveTheBytesOfOne) {
    const int width = 211, height = 190;
    const Bytes image = zeltest::randomRgba(width, height, 5);
    Bytes expected = image;
    zellab::StackBlurRGBA({expected.data(), width, height}, 11);
    std::vector<Bytes> results(8, image);
    std::vector<std::thread> threads;
    for (Bytes& result : results)
        threads.emplace_back([&] {
            const WorkerCount workers(2);
            zellab::StackBlurRGBA({result.data(), width, height}, 11);
        });
    for (std::thread& thread : threads) thread.join();
    for (const Bytes& result : results) EXPECT_EQ(result, expected);
}

}  // namespace
