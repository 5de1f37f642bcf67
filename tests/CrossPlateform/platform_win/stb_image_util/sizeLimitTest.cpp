#include "CrossPlateform/platform_win/stb_image_util/sizeLimit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "support/guardedBytes.h"
#include "support/randomImage.h"
#include "support/shortMemory.h"
#include "support/streamCapture.h"

using zellab::ImageSize;
using namespace zeltest;

namespace {

TEST(SizeLimit, FollowsTheRuleOfTheLongerSide) {
    const struct {
        ImageSize size;
        int maxSize;
        ImageSize limited;
    } cases[] = {
        {{400, 300}, 400, {400, 300}},            // at the longer side: nothing to do
        {{400, 300}, 399, {399, 299}},            // 299.25 truncates
        {{300, 400}, 399, {299, 399}},            //
        {{400, 400}, 123, {123, 123}},            //
        {{1000, 3}, 100, {100, 0}},               // the shorter side may vanish
        {{1, 5000}, 10, {0, 10}},                 //
        {{65535, 65535}, 65534, {65534, 65534}},  // the product passes 32 bits
        {{60000, 50000}, 2147483647, {60000, 50000}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(zellab::limitedSize(c.size, c.maxSize), c.limited)
            << c.size.width << " by " << c.size.height << " to " << c.maxSize;
}

/// One byte of the slow scaler's source, columns and rows behind the end repeated.
int sample(const Bytes& from, ImageSize size, int x, int y, std::size_t c) {
    const auto column = static_cast<std::size_t>(std::min(x, size.width - 1));
    const auto row = static_cast<std::size_t>(std::min(y, size.height - 1));
    return from[(row * static_cast<std::size_t>(size.width) + column) * 4 + c];
}

/// What the filter of the size limit means where the steps are no whole numbers: rows blended in 1/256 with
/// rounding, then columns in 1/128 with weights that add up to 127.
int slowBlend(const Bytes& from, ImageSize size, long long x, long long y, std::size_t c) {
    const int column = static_cast<int>(x >> 16), row = static_cast<int>(y >> 16);
    const int yShare = static_cast<int>(y >> 8) & 255, xShare = static_cast<int>(x >> 9) & 127;
    const auto between = [&](int at) {
        return (sample(from, size, at, row, c) * (256 - yShare) +
                sample(from, size, at, row + 1, c) * yShare + 128) >>
               8;
    };
    return (between(column) * (127 - xShare) + between(column + 1) * xShare) >> 7;
}

TEST(SizeLimit, BlendsTwoRowsAndTwoColumnsAtThePointSamplersPositions) {
    const struct {
        ImageSize from, to;
    } cases[] = {{{6, 58}, {5, 48}},     {{60, 91}, {31, 47}}, {{95, 17}, {62, 11}}, {{103, 8}, {67, 5}},
                 {{201, 40}, {200, 39}}, {{37, 100}, {3, 10}}, {{118, 7}, {68, 4}},  {{1000, 30}, {999, 29}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from.width << " by " << c.from.height << " to " << c.to.width);
        Bytes source = randomRgba(c.from.width, c.from.height, 5);
        Bytes target(zellab::sampleCount(c.to.width, c.to.height, 4));
        ASSERT_TRUE(zellab::scaleToLimit({source.data(), c.from.width, c.from.height},
                                         {target.data(), c.to.width, c.to.height}));
        const long long dx = (static_cast<long long>(c.from.width) << 16) / c.to.width;
        const long long dy = (static_cast<long long>(c.from.height) << 16) / c.to.height;
        const long long yLast = static_cast<long long>(c.from.height - 1) << 16;
        std::size_t i = 0;
        for (int y = 0; y < c.to.height; ++y)
            for (int x = 0; x < c.to.width; ++x)
                for (std::size_t channel = 0; channel < 4; ++channel, ++i)
                    ASSERT_EQ(target[i], slowBlend(source, c.from, dx / 2 + x * dx,
                                                   std::min(dy / 2 + y * dy, yLast), channel))
                        << x << ',' << y << " channel " << channel;
    }
}

// Halves are taken one row on: of rows 2 j + 1 and 2 j + 2, where behind the picture the last row repeats.
TEST(SizeLimit, ExactHalvesTakeTheMeanOneRowOn) {
    for (const ImageSize to : {ImageSize{1, 1}, {1, 3}, {16, 9}, {37, 2}}) {
        const ImageSize from{to.width * 2, to.height * 2};
        const Bytes source = randomRgba(from.width, from.height, 6);
        Bytes target(zellab::sampleCount(to.width, to.height, 4));
        ASSERT_TRUE(zellab::scaleToLimit({source.data(), from.width, from.height},
                                         {target.data(), to.width, to.height}));
        std::size_t i = 0;
        for (int y = 0; y < to.height; ++y)
            for (int x = 0; x < to.width; ++x)
                for (std::size_t c = 0; c < 4; ++c, ++i) {
                    int sum = 0;
                    for (int row : {2 * y + 1, 2 * y + 2})
                        for (int column : {2 * x, 2 * x + 1}) sum += sample(source, from, column, row, c);
                    // The scaler's vector form rounds up twice, rows first.
                    ASSERT_LE(std::abs(target[i] - (sum + 2) / 4), 1)
                        << x << ',' << y << " of " << to.width << " by " << to.height;
                }
    }
}

// The scaler is a library that no sanitizer sees into: the guard pages do.
TEST(SizeLimit, ReadsAndWritesInsideThePicturesOnly) {
    for (int width : {1, 2, 3, 8, 31, 64, 90, 300})
        for (int height : {1, 2, 4, 7, 58, 120}) {
            const ImageSize size{width, height};
            GuardedBytes source(zellab::sampleCount(width, height, 4));
            std::memset(source.data(), 200, source.size());
            for (int maxSize = 1; maxSize < std::max(width, height); ++maxSize) {
                const ImageSize to = zellab::limitedSize(size, maxSize);
                if (to.width == 0 || to.height == 0) continue;
                GuardedBytes target(zellab::sampleCount(to.width, to.height, 4));
                ASSERT_TRUE(zellab::scaleToLimit({source.data(), width, height},
                                                 {target.data(), to.width, to.height}));
                // A flat picture stays flat to the last column (the blend takes a level or two off).
                const int value = target.data()[0];
                ASSERT_GE(value, 197);
                ASSERT_EQ(std::count(target.data(), target.data() + target.size(), value),
                          static_cast<std::ptrdiff_t>(target.size()))
                    << width << " by " << height << " to " << maxSize;
            }
        }
}

TEST(SizeLimit, WhatCannotBeScaledKeepsItsPixelsAndSaysWhy) {
    const auto fresh = [](std::size_t bytes) {
        return zellab::ImageBuffer(static_cast<unsigned char*>(std::calloc(bytes, 1)));
    };
    StreamCapture log(stderr);
    zellab::ImageBuffer long1 = fresh(40000 * 100 * 4);
    const unsigned char* before = long1.get();
    EXPECT_EQ(zellab::maxSizeAdjust(long1, {40000, 100}, 1000), (ImageSize{40000, 100}));
    EXPECT_EQ(long1.get(), before);
    EXPECT_NE(log.text().find("MaxSizeAdjust"), std::string::npos);

    zellab::ImageBuffer none;
    zellab::maxSizeAdjust(none, {4, 4}, 2);
    zellab::maxSizeAdjust(long1, {0, 4}, 2);
    EXPECT_NE(log.text().find(") param error."), log.text().rfind(") param error."));

    zellab::ImageBuffer thin = fresh(5000 * 4);
    EXPECT_EQ(zellab::maxSizeAdjust(thin, {1, 5000}, 10), (ImageSize{0, 10}));
    EXPECT_NE(thin, nullptr);
}

TEST(SizeLimit, WithoutMemoryForARowThePictureStaysAsItIs) {
    if (!kCanStarve) GTEST_SKIP() << "the sanitizers' allocator ends the program";
    constexpr ImageSize kSize{1000, 800};
    const std::size_t bytes = zellab::sampleCount(kSize.width, kSize.height, 4);
    StreamCapture log(stderr);
    for (const int maxSize : {999, 700}) {
        zellab::ImageBuffer pixels(static_cast<unsigned char*>(std::malloc(bytes)));
        std::memset(pixels.get(), 90, bytes);
        const ImageSize to = zellab::limitedSize(kSize, maxSize);
        const std::size_t target = zellab::sampleCount(to.width, to.height, 4);  // and then none for a row
        const auto scale = [&] {
            const unsigned char* const before = pixels.get();
            const bool kept =
                zellab::maxSizeAdjust(pixels, kSize, maxSize) == kSize && pixels.get() == before;
            if (!kept || !std::all_of(before, before + bytes, [](int b) { return b == 90; })) std::abort();
        };
        EXPECT_EQ(inShortMemory(target, scale), ShortOfMemory::done) << maxSize;
    }
    EXPECT_NE(log.text().find("scale 1000 x 800 error"), std::string::npos);
}

}  // namespace
