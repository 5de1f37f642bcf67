#include <gtest/gtest.h>

#include "reference/slowTableBase.h"
#include "support/everyMachine.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/tone/psContrastBrightness.h"

namespace {

using ZelImageCore::TableBase;
using namespace zeltest;

// Regions inside the picture, over its sides, around it and beside it.
TEST(AlphaMixMatchesSlow, InAnyRegion) {
    const int width = 41, height = 29;
    const Bytes image = randomRgba(width, height, 51), source = randomRgba(width, height, 52);
    const std::vector<std::vector<float>> blocks = {
        {0, 0, 41, 29, 0, 1},         {3.9f, 5.2f, 17.8f, 11, 2, 1}, {40, 28, 1, 1, 3, 0.5f},
        {0, 7, 41, 1, 1.9f, 0.77f},   {11, 0, 1, 29, 4, 0.999f},     {5, 5, 30, 20, 60, 0.25f},
        {20, 3, 12, 12, 0, 0.33333f}, {-10, -12, 30, 30, 0, 1},      {-20.5f, -20, 100, 100, 3, 1},
        {41, 0, 4, 4, 0, 1},          {0, 29, 4, 4, 0, 1},           {-4, 0, 4, 4, 0, 1},
        {2e9f, -2e9f, 4, 4, 0, 1},    {-3e38f, 3e38f, 4, 4, 0, 1}};
    for (const auto& params : blocks) {
        SCOPED_TRACE(testing::PrintToString(params));
        Bytes mask = randomRgba(static_cast<int>(params[2]), static_cast<int>(params[3]), 53);
        for (std::size_t i = 0; i < mask.size(); i += 8) mask[i] = i % 3 ? 0 : 255;
        Bytes expected = image, expectedMask = mask;
        slow::alphaMix(expected, width, source, expectedMask, params.data());
        onEveryMachine([&] {
            Bytes actual = image, actualMask = mask, second = source;
            std::vector<float> block = params;
            TableBase::ImageProcessWithAlphaMix(actual.data(), width, height, second.data(),
                                                actualMask.data(), block.data());
            ASSERT_TRUE(sameSamples(expected, actual, width * 4));
            ASSERT_TRUE(sameSamples(expectedMask, actualMask, static_cast<int>(params[2]) * 4));
        });
    }
}

TEST(AlphaMix, ANumberThatIsNoneLeavesThePicture) {
    const Bytes before = randomRgba(8, 8, 1);
    Bytes picture = before, second = randomRgba(8, 8, 2), mask(4 * 4 * 4, 255);
    for (int k = 0; k < 6; ++k)
        for (const float wild : {NAN, INFINITY}) {
            float params[6] = {0, 0, 4, 4, 0, 1};
            params[k] = wild;
            TableBase::ImageProcessWithAlphaMix(picture.data(), 8, 8, second.data(), mask.data(), params);
            EXPECT_EQ(picture, before) << k;
        }
}

TEST(ColorMixingMatchesSlow, WithEachParameterAndTheirOrder) {
    const std::vector<std::vector<float>> blocks = {
        {40, -30},        {40, 0, 0},          {0, 55, 0},      {0, 0, -60.9f},
        {0, 0, 0.9f, 25}, {0, 0, 0, 12},       {0, 0, 0, -14},  {0, 0, 0, -0.5f},
        {25, -40, 35, 8}, {25, -40, 35, 8, 9}, {-100, 100, 80}, {-80, -100, -100, 3}};
    for (const Size size : kAwkwardSizes) {
        const Bytes picture = randomRgba(size.width, size.height, 54);
        for (const auto& params : blocks)
            compareWithSlow(
                size, picture,
                [&](Bytes& p) {
                    slow::colorMixing(p, params, zellab::BrightnessTable, zellab::ContrastTable);
                },
                [&](Bytes& p) {
                    std::vector<float> block = params;
                    TableBase::ImageProcessWithColorMixing(p.data(), size.width, size.height, block.data(),
                                                           static_cast<int>(block.size()));
                },
                testing::PrintToString(params));
    }
}

TEST(MosaicAndGaussBlurMatchSlow, OnAwkwardSizes) {
    for (const Size size : kAwkwardSizes) {
        const Bytes picture = randomRgba(size.width, size.height, 55);
        for (const int amount : {-4, 0, 1, 2, 3, 5, 16, 1000}) {
            compareWithSlow(
                size, picture, [&](Bytes& p) { slow::mosaic(p, size.width, size.height, amount); },
                [&](Bytes& p) {
                    TableBase::ImageProcessWithMosaic(p.data(), size.width, size.height, amount);
                },
                "mosaic", amount);
            compareWithSlow(
                size, picture,
                [&](Bytes& p) { slow::stackBlurEx(p, size.width, size.height, size.width * 4, amount); },
                [&](Bytes& p) {
                    TableBase::ImageProcessWithGaussBlur(p.data(), size.width, size.height, amount);
                },
                "blur", amount);
        }
    }
}

// Every pair of picture and blurred byte once, and every channel.
TEST(SharpMatchesSlow, OnEveryPairOfBytes) {
    const std::array<Bytes, 2> pairs = allPairs();
    const Bytes &picture = pairs[0], &blurred = pairs[1];
    for (const float amount : {-2.5f, -1.0f, -0.3f, 0.0f, 0.1f, 0.25f, 0.37f, 1.3f, 40.0f})
        compareWithSlow(
            {256, 256}, picture, [&](Bytes& p) { slow::sharp(p, amount, blurred); },
            [&](Bytes& p) {
                Bytes second = blurred;
                unsigned char* address = second.data();
                TableBase::ImageProcessWithSharp(p.data(), 256, 256, amount, &address);
                ASSERT_EQ(blurred, second);
            },
            amount);
}

}  // namespace
