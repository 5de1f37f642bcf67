#include <gtest/gtest.h>

#include "reference/slowTableBase.h"
#include "support/everyMachine.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/tone/psContrastBrightness.h"

namespace {

using ZelImageCore::TableBase;
using zeltest::Bytes;
using zeltest::Size;

TEST(AlphaMixMatchesSlow, InsideARegion) {
    const int width = 41, height = 29;
    const Bytes image = zeltest::randomRgba(width, height, 51),
                source = zeltest::randomRgba(width, height, 52);
    const std::vector<std::vector<float>> blocks = {
        {0, 0, 41, 29, 0, 1},        {3.9f, 5.2f, 17.8f, 11, 2, 1}, {40, 28, 1, 1, 3, 0.5f},
        {0, 7, 41, 1, 1.9f, 0.77f},  {11, 0, 1, 29, 4, 0.999f},     {5, 5, 30, 20, 60, 0.25f},
        {20, 3, 12, 12, 0, 0.33333f}};
    for (const auto& params : blocks) {
        SCOPED_TRACE(testing::PrintToString(params));
        Bytes mask = zeltest::randomRgba(static_cast<int>(params[2]), static_cast<int>(params[3]), 53);
        for (std::size_t i = 0; i < mask.size(); i += 8) mask[i] = i % 3 ? 0 : 255;
        Bytes expected = image, expectedMask = mask;
        slow::alphaMix(expected, width, source, expectedMask, params.data());
        zeltest::onEveryMachine([&] {
            Bytes actual = image, actualMask = mask, second = source;
            std::vector<float> block = params;
            TableBase::ImageProcessWithAlphaMix(actual.data(), width, height, second.data(),
                                                actualMask.data(), block.data());
            ASSERT_TRUE(zeltest::sameSamples(expected, actual, width * 4));
            ASSERT_TRUE(zeltest::sameSamples(expectedMask, actualMask, static_cast<int>(params[2]) * 4));
        });
    }
}

TEST(ColorMixingMatchesSlow, WithEachParameterAndTheirOrder) {
    const std::vector<std::vector<float>> blocks = {
        {40, -30},        {40, 0, 0},          {0, 55, 0},      {0, 0, -60.9f},
        {0, 0, 0.9f, 25}, {0, 0, 0, 12},       {0, 0, 0, -14},  {0, 0, 0, -0.5f},
        {25, -40, 35, 8}, {25, -40, 35, 8, 9}, {-100, 100, 80}, {-80, -100, -100, 3}};
    for (const Size size : zeltest::kAwkwardSizes) {
        const Bytes picture = zeltest::randomRgba(size.width, size.height, 54);
        for (const auto& params : blocks) {
            SCOPED_TRACE(testing::PrintToString(params));
            Bytes expected = picture;
            slow::colorMixing(expected, params, zellab::BrightnessTable, zellab::ContrastTable);
            zeltest::compareEverywhere(expected, picture, size.width * 4, [&](Bytes& actual) {
                std::vector<float> block = params;
                TableBase::ImageProcessWithColorMixing(actual.data(), size.width, size.height, block.data(),
                                                       static_cast<int>(block.size()));
            });
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST(MosaicAndGaussBlurMatchSlow, OnAwkwardSizes) {
    for (const Size size : zeltest::kAwkwardSizes) {
        const Bytes picture = zeltest::randomRgba(size.width, size.height, 55);
        for (const int amount : {-4, 0, 1, 2, 3, 5, 16, 1000}) {
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", " << amount);
            Bytes blocks = picture, blur = picture;
            slow::mosaic(blocks, size.width, size.height, amount);
            slow::stackBlurEx(blur, size.width, size.height, size.width * 4, amount);
            zeltest::onEveryMachine([&] {
                Bytes actual = picture;
                TableBase::ImageProcessWithMosaic(actual.data(), size.width, size.height, amount);
                ASSERT_TRUE(zeltest::sameSamples(blocks, actual, size.width * 4)) << "mosaic";
                actual = picture;
                TableBase::ImageProcessWithGaussBlur(actual.data(), size.width, size.height, amount);
                ASSERT_TRUE(zeltest::sameSamples(blur, actual, size.width * 4)) << "blur";
            });
        }
    }
}

// Every pair of picture and blurred byte once, and every channel.
TEST(SharpMatchesSlow, OnEveryPairOfBytes) {
    Bytes picture(256 * 256 * 4), blurred(256 * 256 * 4);
    for (std::size_t i = 0; i < picture.size(); ++i) {
        picture[i] = static_cast<unsigned char>(i / 1024);
        blurred[i] = static_cast<unsigned char>(i / 4);
    }
    for (const float amount : {-2.5f, -1.0f, -0.3f, 0.0f, 0.1f, 0.25f, 0.37f, 1.3f, 40.0f}) {
        SCOPED_TRACE(testing::Message() << "amount " << amount);
        Bytes expected = picture;
        slow::sharp(expected, amount, blurred);
        zeltest::onEveryMachine([&] {
            Bytes actual = picture, second = blurred;
            unsigned char* address = second.data();
            TableBase::ImageProcessWithSharp(actual.data(), 256, 256, amount, &address);
            ASSERT_TRUE(zeltest::sameSamples(expected, actual, 256 * 4));
            ASSERT_EQ(blurred, second);
        });
    }
}

}  // namespace
