#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <thread>

#include "frame/processorCount.h"
#include "frame/zel_effects.h"
#include "platform/simdLevel.h"
#include "support/randomImage.h"
#include "zellab/imageproc/stackBlur.h"

namespace {

using ZelImageCore::TableSkin;
using zeltest::Bytes;

Bytes flat(int width, int height, unsigned char red, unsigned char green, unsigned char blue) {
    Bytes pixels;
    for (int i = 0; i < width * height; ++i) pixels.insert(pixels.end(), {red, green, blue, 99});
    return pixels;
}

Bytes brightened(Bytes image, int width, int height, int radius, int level) {
    EXPECT_TRUE(TableSkin::ImageProcessWithBright(image.data(), width, height, radius, level));
    return image;
}

Bytes smoothed(Bytes image, int width, int height, int radius) {
    TableSkin::ImageProcessWithNatureSmooth(image.data(), width, height, radius);
    return image;
}

TEST(Bright, LevelIsLimitedAndZeroKeepsThePicture) {
    const Bytes image = zeltest::patternRgba(83, 61, 1);
    EXPECT_EQ(brightened(image, 83, 61, 7, 0), image);
    EXPECT_EQ(brightened(image, 83, 61, 7, -2), image);
    EXPECT_EQ(brightened(image, 83, 61, 7, 15), brightened(image, 83, 61, 7, 10));
    EXPECT_NE(brightened(image, 83, 61, 7, 10), brightened(image, 83, 61, 7, 9));
}

// The burn at full level by hand, on a picture that the blur makes one grey dot of: a dark dot of 100 in a
// ground of 200 under a blur of b = 187 (radius 1, centre weight 4/16) has h = 100 - 175 + 128 = 53.
TEST(Bright, BurnsADarkDotByTwiceItsHighPass) {
    const int side = 8;
    Bytes image = flat(side, side, 200, 200, 200);
    const std::size_t dot = (3 * side + 3) * 4;
    image[dot] = 100;
    Bytes blur = image;
    zellab::StackBlurRGBA(blur.data(), side, side, 1);
    ASSERT_EQ(blur[dot], 175);
    const Bytes result = brightened(image, side, side, 1, 10);
    // (100 - 255) * 256 / 106 = -374, which is below black.
    EXPECT_EQ(result[dot], 0);
    // Its neighbours are brighter than their blur and stay.
    EXPECT_EQ(result[dot + 4], 200);
    image[dot] = 180;
    // Blur 195, h = 113: (180 - 255) * 256 / 226 + 255 = -84 + 255.
    EXPECT_EQ(brightened(image, side, side, 1, 10)[dot], 171);
    // 180 * 0.5 + 171 * 0.5 = 175.5.
    EXPECT_EQ(brightened(image, side, side, 1, 5)[dot], 175);
}

TEST(Mascara, IsTheSameKernel) {
    const Bytes image = zeltest::patternRgba(140, 120, 2);
    Bytes mascara = image;
    TableSkin::ImageProcessWithMascara(mascara.data(), 140, 120, 9, 6);
    EXPECT_EQ(mascara, brightened(image, 140, 120, 9, 6));
}

// Flat pictures, by hand. Black: light = 1, share 0.5 -> 0.5 -> 0.5 -> 0.5; the curve is 0 there. White:
// light is nearly 0 and share just below 0.5, and the curve keeps 255.
TEST(NatureSmooth, FlatPicturesFollowTheCurveByTheirGreen) {
    EXPECT_EQ(smoothed(flat(12, 9, 0, 0, 0), 12, 9, 2), flat(12, 9, 0, 0, 0));
    EXPECT_EQ(smoothed(flat(12, 9, 255, 255, 255), 12, 9, 2), flat(12, 9, 255, 255, 255));
    // Green alone steers: 2 (1 - g) + g - 1 = 1 - g, so the share is a half whatever the green is, and the
    // result lies half way to the curve: 64 -> (71 + 64) / 2, 12 -> (3 + 12) / 2.
    for (unsigned char green : {20, 128, 230}) {
        const Bytes result = smoothed(flat(12, 9, 64, green, 12), 12, 9, 2);
        EXPECT_EQ(result[0], 67);
        EXPECT_EQ(result[2], 7);
        EXPECT_EQ(result[3], 99);
    }
}

using Effect = void (*)(unsigned char*, int, int);
const Effect kEffects[] = {
    [](unsigned char* p, int w, int h) { TableSkin::ImageProcessWithMascara(p, w, h, 11, 7); },
    [](unsigned char* p, int w, int h) { TableSkin::ImageProcessWithNatureSmooth(p, w, h, 11); },
};

TEST(SimpleSkin, AlphaStaysAndNeitherWorkersNorVectorFormsChangeAByte) {
    const int width = 261, height = 143;
    for (const Effect effect : kEffects) {
        const Bytes image = zeltest::patternRgba(width, height, 3);
        Bytes expected;
        for (auto level : {zellab::platform::SimdLevel::baseline, zellab::platform::SimdLevel::avx2})
            for (int workers : {1, 2, 3, 8}) {
                const zellab::platform::SimdLimit limit(level);
                const zellab::WorkerCount count(workers);
                Bytes result = image;
                effect(result.data(), width, height);
                for (std::size_t i = 3; i < image.size(); i += 4) ASSERT_EQ(result[i], image[i]);
                if (expected.empty()) expected = result;
                ASSERT_EQ(result, expected) << workers << " workers";
            }
        std::vector<Bytes> results(8, image);
        std::vector<std::thread> threads;
        for (Bytes& result : results) threads.emplace_back([&] { effect(result.data(), width, height); });
        for (std::thread& thread : threads) thread.join();
        for (const Bytes& result : results) EXPECT_EQ(result, expected);
    }
}

TEST(SimpleSkin, BadInputLeavesThePictureAndOddInputStaysInside) {
    Bytes image = zeltest::randomRgba(9, 9, 1);
    const Bytes before = image;
    EXPECT_FALSE(TableSkin::ImageProcessWithBright(nullptr, 9, 9, 3, 5));
    TableSkin::ImageProcessWithMascara(nullptr, 9, 9, 3, 5);
    TableSkin::ImageProcessWithNatureSmooth(nullptr, 9, 9, 3);
    for (const auto& [width, height] : {std::pair{0, 9}, {9, 0}, {-9, 9}, {9, INT_MIN}}) {
        EXPECT_FALSE(TableSkin::ImageProcessWithBright(image.data(), width, height, 3, 5));
        TableSkin::ImageProcessWithMascara(image.data(), width, height, 3, 5);
        TableSkin::ImageProcessWithNatureSmooth(image.data(), width, height, 3);
    }
    EXPECT_EQ(image, before);
    for (int radius : {INT_MIN, -1, 0, INT_MAX})
        for (const auto& [width, height] : {std::pair{1, 1}, {1, 300}, {300, 1}}) {
            Bytes small = zeltest::randomRgba(width, height, 2);
            EXPECT_TRUE(TableSkin::ImageProcessWithBright(small.data(), width, height, radius, INT_MAX));
            TableSkin::ImageProcessWithNatureSmooth(small.data(), width, height, radius);
        }
}

}  // namespace
