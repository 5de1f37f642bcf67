#include "bokeh/passes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

#include "bokeh/backEnd.h"
#include "bokeh/passTables.h"
#include "bokeh/shaderKeys.h"
#include "glScene.h"

namespace {

using namespace zellab::Bokeh;
using namespace zeltest;

class Passes : public GlScene {
protected:
    /// A working picture of half the size, all `soft`, and a radius for each of its pixels.
    Bytes composed(int width, int height, const Bytes& photograph, const Bytes& soft, const Bytes& radius) {
        const int w = width / 2, h = height / 2;
        const Texture2D target = rgbaTexture(width, height, nullptr);
        const CompositionTextures textures{rgbaTexture(w, h, soft.data()),
                                           makeNoiseTexture(),
                                           rgbaTexture(width, height, photograph.data()),
                                           planeTexture(w, h, radius.data()),
                                           {},
                                           makeGrainTexture(grainMap({photograph.data(), width, height}))};
        EXPECT_TRUE(compose(cache, textures, 0.0f, 2.0f, kSmallBlurRadius, target));
        return readRgba(target);
    }
};

Bytes flat(int width, int height, int r, int g, int b) {
    return drawnRgba(width, height, [=](int, int) { return std::array{r, g, b}; });
}

TEST_F(Passes, EveryShaderOfTheFileCompilesAndLinksWithoutAWord) {
    testing::internal::CaptureStderr();
    for (const PassShader& shader : kPassShaders)
        EXPECT_TRUE(cache.program(shader.key).isValid()) << shader.file;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(cache.programCount(), kPassShaders.size());
}

TEST_F(Passes, DownscaleAveragesItsBlocks) {
    const Bytes photograph = randomRgba(48, 36, 1);
    const Texture2D small = rgbaTexture(16, 12, nullptr);
    ASSERT_TRUE(downscale(cache, rgbaTexture(48, 36, photograph.data()), small));
    const Bytes shrunk = readRgba(small);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 16; ++x)
            for (int c = 0; c < 3; ++c) {
                int sum = 0;
                for (int i = 0; i < 9; ++i)
                    sum +=
                        photograph[static_cast<std::size_t>(((3 * y + i / 3) * 48 + 3 * x + i % 3) * 4 + c)];
                ASSERT_NEAR(shrunk[static_cast<std::size_t>((y * 16 + x) * 4 + c)], sum / 9.0, 2.0);
            }
}

TEST_F(Passes, CopiesWantEqualSizesAndSmoothingKeepsOutlines) {
    Bytes halves = flat(20, 16, 200, 180, 160);
    for (std::size_t i = 0; i < halves.size(); i += 4)
        if (i / 4 % 20 < 10) halves[i] = halves[i + 1] = halves[i + 2] = 20;
    const Texture2D source = rgbaTexture(20, 16, halves.data()), target = rgbaTexture(20, 16, nullptr);
    for (const auto pass : {copy, smoothCopy}) {
        EXPECT_FALSE(pass(cache, source, rgbaTexture(20, 15, nullptr)));
        ASSERT_TRUE(pass(cache, source, target));
        EXPECT_LE(differenceOf(readRgba(target), halves).largest, pass == copy ? 0 : 3);
    }
    Bytes grainy = flat(20, 16, 120, 120, 120);
    for (std::size_t i = 0; i < grainy.size(); i += 8) grainy[i] = 128;
    ASSERT_TRUE(smoothCopy(cache, rgbaTexture(20, 16, grainy.data()), target));
    EXPECT_LT(std::abs(readRgba(target)[4 * 45] - readRgba(target)[4 * 46]), 4)
        << "grain of 8 levels shrinks";
}

TEST_F(Passes, CompositionKeepsTheFocusAndPaintsNoRimAtItsOutline) {
    const int width = 96, height = 64;
    Bytes photograph = flat(width, height, 40, 120, 60), soft = flat(width / 2, height / 2, 40, 120, 60);
    Bytes radius(static_cast<std::size_t>(width / 2 * height / 2), 30);
    // A bright subject from column 37 on, an odd place; the coarse plane has it two pixels too far left.
    for (int y = 0; y < height; ++y)
        for (int x = 37; x < width; ++x) photograph[static_cast<std::size_t>((y * width + x) * 4)] = 230;
    for (int y = 0; y < height / 2; ++y)
        for (int x = 17; x < width / 2; ++x) {
            radius[static_cast<std::size_t>(y * width / 2 + x)] = 0;
            soft[static_cast<std::size_t>((y * width / 2 + x) * 4)] = 230;
        }
    const Bytes out = composed(width, height, photograph, soft, radius);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto i = static_cast<std::size_t>((y * width + x) * 4);
            if (x >= 37)
                ASSERT_EQ(out[i], 230) << x;
            else
                ASSERT_NEAR(out[i], 40, 3) << x << ": the subject's red leaks into the ground";
        }
    EXPECT_EQ(composed(width, height, photograph, soft, Bytes(radius.size(), 0)), photograph);
}

// The blurred ground gets the grain that the photograph has: as strong, and none where there is none.
TEST_F(Passes, CompositionPutsThePhotographsOwnGrainBack) {
    const int width = 256, height = 192;
    std::mt19937 random(3);
    for (const double strength : {0.0, 2.0, 5.0}) {
        std::normal_distribution<double> grain(0.0, strength);
        Bytes photograph = flat(width, height, 120, 110, 100);
        for (std::size_t i = 0; i < photograph.size(); i += 4) {
            const double bright = strength > 0 ? grain(random) : 0.0;
            for (std::size_t c = 0; c < 3; ++c)
                photograph[i + c] = static_cast<unsigned char>(std::lround(photograph[i + c] + bright));
        }
        const Bytes out = composed(width, height, photograph, flat(width / 2, height / 2, 120, 110, 100),
                                   Bytes(static_cast<std::size_t>(width * height / 4), 40));
        double sum = 0, squares = 0;
        for (std::size_t i = 0; i < out.size(); i += 4) {
            const double luma = 0.299 * out[i] + 0.587 * out[i + 1] + 0.114 * out[i + 2];
            sum += luma, squares += luma * luma;
        }
        const double n = width * height, mean = sum / n, deviation = std::sqrt(squares / n - mean * mean);
        EXPECT_NEAR(mean, 0.299 * 120 + 0.587 * 110 + 0.114 * 100, 0.3);
        EXPECT_NEAR(deviation, strength, 0.15 * strength + 0.05);
    }
}

TEST_F(Passes, HairKeepsThePhotographByItsMask) {
    const Bytes sharp = flat(40, 24, 250, 10, 10), blurred = flat(40, 24, 10, 10, 250);
    const auto mixed = [&](const Bytes& mask) {
        const Texture2D photograph = rgbaTexture(40, 24, sharp.data());
        EXPECT_TRUE(composeHair(cache, rgbaTexture(40, 24, blurred.data()), planeTexture(20, 12, mask.data()),
                                photograph));
        return readRgba(photograph);
    };
    EXPECT_EQ(mixed(Bytes(240, 0)), blurred);
    EXPECT_EQ(mixed(Bytes(240, 255)), sharp);
    Bytes line(240, 0);  // a single hair, as faint as half size makes it
    for (std::size_t y = 0; y < 12; ++y) line[20 * y + 10] = 140;
    const Bytes hair = mixed(line);
    EXPECT_GT(hair[4 * (40 * 12 + 20)], 130) << "the hair comes out at least as strong as its mask";
    EXPECT_LT(hair[4 * (40 * 12 + 16)], 14) << "and nothing beside it";
    EXPECT_FALSE(composeHair(cache, rgbaTexture(40, 23, nullptr), {}, rgbaTexture(40, 24, nullptr)));
}

TEST(Renderers, ThoseInSoftwareAreKnownByTheirNamesInAnyCase) {
    for (const char* name : {"llvmpipe (LLVM 15.0.6, 256 bits)", "LLVMPIPE", "softpipe", "SWR (x)",
                             "Software Rasterizer", "Google SwiftShader", "GDI Generic",
                             "Microsoft Basic Render Driver", "D3D12 (Microsoft Basic Render Driver)"})
        EXPECT_TRUE(isSoftwareRenderer(name)) << name;
    for (const char* name : {"", "Quadro 4000/PCIe/SSE2", "HD Graphics 620 (KBL GT2)"})
        EXPECT_FALSE(isSoftwareRenderer(name)) << name;
    EXPECT_FALSE(isSoftwareRenderer(nullptr));
}

// Each kernel of the small blur but the first sums to 10.
TEST(PassTables, KernelsOfTheSmallBlurKeepTheirSum) {
    const auto* value = kBokehData.begin() + 1;
    for (int side = 3; side <= 9; value += side * side, side += 2)
        EXPECT_NEAR(std::accumulate(value, value + side * side, 0.0f), 10.0f, 1e-3f) << side;
}

}  // namespace
