#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <tuple>

#include "beautykernel/inpainting/gradientInpainter.h"
#include "beautykernel/inpainting/patchFillInpainter.h"
#include "beautykernel/wrinkle_cleaner/wrinkleMaskCleaner.h"
#include "beautykernel/wrinkle_cleaner/wrinkleRegionCleaner.h"
#include "support/randomImage.h"
#include "zel_effects/zel_effects.h"

namespace {

using namespace zellab;
using ZelImageCore::TableSkin;
using zeltest::Bytes;

struct Picture {
    int width, height;
    Bytes pixels, mask;
    Picture(int w, int h, unsigned seed)
        : width(w),
          height(h),
          pixels(zeltest::patternRgba(w, h, seed)),
          mask(static_cast<std::size_t>(w * h), 0) {}
    void mark(int x0, int y0, int x1, int y1, Byte value = 255) {
        for (int y = y0; y < y1; ++y) std::fill_n(mask.begin() + y * width + x0, x1 - x0, value);
    }
    void inpaint(int method) {
        TableSkin::ImageProcessWithInpaint(pixels.data(), width, height, mask.data(), method);
    }
};

/// A smooth slope with a hole marked on it. What a repair must restore after paintBlot.
Picture blotOnASlope() {
    Picture p(120, 90, 1);
    p.pixels = zeltest::drawnRgba(120, 90, [](int x, int y) {
        const int grey = 80 + x / 2 + y / 3 + (x * 7 + y * 13) % 5;
        return std::array{grey, grey + 10, grey + 20};
    });
    p.mark(50, 40, 72, 55);
    return p;
}

/// Paints a blot into the hole, two pixels short of its rim: the steps of the pixels around a hole stay, so a
/// mask is painted a little larger than the defect.
void paintBlot(Picture& p) {
    for (int y = 42; y < 53; ++y)
        for (int x = 52; x < 70; ++x)
            std::fill_n(&p.pixels[static_cast<std::size_t>(y * p.width + x) * 4], 3, Byte{20});
}

double errorInHole(const Picture& p, const Picture& truth) {
    double sum = 0, count = 0;
    for (std::size_t i = 0; i < p.mask.size(); ++i)
        for (std::size_t c = 0; p.mask[i] && c < 3; ++c, ++count)
            sum += std::abs(p.pixels[i * 4 + c] - truth.pixels[i * 4 + c]);
    return sum / count;
}

TEST(Inpaint, BothEnginesRestoreASlopeUnderABlot) {
    const Picture truth = blotOnASlope();
    for (int method : {0, 1}) {
        Picture p = truth;
        paintBlot(p);
        std::srand(1);
        p.inpaint(method);
        EXPECT_LT(errorInHole(p, truth), method == 1 ? 4.0 : 12.0) << "method " << method;
        // What lies outside the hole is the same, but for the roundings of the solve.
        for (std::size_t i = 0; i < p.mask.size(); ++i)
            for (std::size_t c = 0; !p.mask[i] && c < 4; ++c)
                ASSERT_LE(std::abs(p.pixels[i * 4 + c] - truth.pixels[i * 4 + c]),
                          method == 1 && c < 3 ? 3 : 0);
    }
}

TEST(GradientInpainter, StrengthActsThroughItsSquareRoot) {
    const Picture original = blotOnASlope();
    Picture blot = original;
    paintBlot(blot);
    const auto repaired = [&](int strength) {
        Bytes pixels = blot.pixels;
        EXPECT_TRUE(GradientInpainter().Run({pixels.data(), blot.width, blot.height},
                                            {blot.mask.data(), blot.width, blot.height}, strength));
        return pixels;
    };
    const Bytes full = repaired(100), faint = repaired(1);
    EXPECT_EQ(repaired(0), blot.pixels);
    EXPECT_EQ(repaired(std::numeric_limits<int>::min()), blot.pixels);
    EXPECT_EQ(repaired(std::numeric_limits<int>::max()), full);
    for (std::size_t i = 0; i < full.size(); ++i)
        ASSERT_EQ(faint[i], i % 4 == 3 ? blot.pixels[i] : (full[i] * 25 + blot.pixels[i] * 231) / 256);
}

// All runs draw on one row of random numbers. Taking turns, they use it up like runs one after the other,
// whatever their order; mixed, they would not.
TEST(PatchFill, RunsOnSeveralThreadsTakeTurns) {
    Picture p(60, 60, 5);
    p.mark(20, 20, 40, 40);
    const auto results = [&p](bool atOnce) {
        std::vector<Picture> pictures(4, p);
        std::vector<std::thread> threads;
        std::srand(7);
        for (Picture& picture : pictures) {
            threads.emplace_back([&picture] { picture.inpaint(0); });
            if (!atOnce) threads.back().join();
        }
        std::multiset<std::string> all;
        for (std::thread& thread : threads)
            if (thread.joinable()) thread.join();
        for (const Picture& picture : pictures) all.emplace(picture.pixels.begin(), picture.pixels.end());
        return all;
    };
    EXPECT_EQ(results(true), results(false));
}

TEST(PatchFill, AHoleOfOneRowOrWithoutSourcesStays) {
    Picture row(40, 40, 6), whole(40, 40, 6);
    row.mark(5, 20, 30, 21);
    whole.mark(0, 0, 40, 40);
    auto& engine = PatchFillInpainter::instance();
    const Bytes before = row.pixels;
    EXPECT_FALSE(engine.Run({row.pixels.data(), 40, 40}, {row.mask.data(), 40, 40}, {}));
    EXPECT_TRUE(engine.Run({whole.pixels.data(), 40, 40}, {whole.mask.data(), 40, 40}, {}));
    EXPECT_FALSE(engine.Run({row.pixels.data(), 40, 40}, {row.mask.data(), 40, 40}, {.radius = 0}));
    EXPECT_EQ(row.pixels, before);
    EXPECT_EQ(whole.pixels, before);
}

TEST(WrinkleCleaner, BlockSizeFollowsThePicture) {
    EXPECT_EQ(WrinkleMaskCleaner::blockSizeFor(3000), 53);
    EXPECT_EQ(WrinkleMaskCleaner::blockSizeFor(400), 5);
    EXPECT_EQ(WrinkleMaskCleaner::blockSizeFor(20), 5);
    EXPECT_EQ(WrinkleMaskCleaner::blockSizeFor(700), 9);
    EXPECT_EQ(WrinkleMaskCleaner::blockSizeFor(30000), 55);
}

TEST(WrinkleCleaner, TheTwoPathsReadMaskAndStrengthByTheirOwnRules) {
    Picture soft = blotOnASlope();
    std::replace(soft.mask.begin(), soft.mask.end(), Byte{255}, Byte{254});
    const Bytes before = soft.pixels;
    EXPECT_FALSE(WrinkleMaskCleaner().Run({soft.pixels.data(), soft.width, soft.height},
                                          {soft.mask.data(), soft.width, soft.height}, 100));
    EXPECT_EQ(soft.pixels, before) << "the mask path counts 255 alone";
    testing::internal::CaptureStdout();
    WrinkleRegionCleaner region;
    EXPECT_TRUE(region.Prepare({soft.mask.data(), soft.width, soft.height}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "<[zel_RtKit] ERROR:> rvl 50 71 40 54\n");
    EXPECT_FALSE(WrinkleMaskCleaner().Run({soft.pixels.data(), 19, 200}, {soft.mask.data(), 19, 200}, 100))
        << "too small";

    // Strength acts on the mask path alone.
    Picture weak = blotOnASlope();
    paintBlot(weak);
    Picture strong = weak, none = weak;
    testing::internal::CaptureStdout();
    TableSkin::ImageProcessWithWrinkleCleaner(weak.pixels.data(), 120, 90, weak.mask.data(), 0, 2);
    TableSkin::ImageProcessWithWrinkleCleaner(strong.pixels.data(), 120, 90, strong.mask.data(), 90, 2);
    testing::internal::GetCapturedStdout();
    TableSkin::ImageProcessWithWrinkleCleaner(none.pixels.data(), 120, 90, none.mask.data(), 0, 0);
    EXPECT_EQ(weak.pixels, strong.pixels);
    EXPECT_NE(weak.pixels, none.pixels);

    // The box path solves from ten pixels a side on.
    for (const auto& [width, height, works] : {std::tuple{9, 120, false}, {120, 9, false}, {10, 120, true}}) {
        Picture narrow(width, height, 3);
        narrow.mark(2, 2, 8, 8);
        const Bytes untouched = narrow.pixels;
        testing::internal::CaptureStdout();
        TableSkin::ImageProcessWithWrinkleCleaner(narrow.pixels.data(), width, height, narrow.mask.data(), 0,
                                                  2);
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(narrow.pixels != untouched, works) << width << " by " << height;
    }
}

}  // namespace
