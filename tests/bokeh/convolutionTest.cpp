#include <gtest/gtest.h>

#include <system_error>
#include <thread>

#include "bokeh/passes.h"
#include "bokeh/spinIndex.h"
#include "glScene.h"
#include "support/noThreads.h"
#include "support/streamCapture.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using namespace zellab::Bokeh;
using namespace zeltest;

class Convolution : public GlScene {
protected:
    ConvolutionTextures texturesOf(const BokehCase& c) {
        ConvolutionTextures textures;
        textures.small = rgbaTexture(c.width, c.height, c.rgba.data());
        textures.kernel = planeTexture(kStripWidth, kStripHeight, c.strip.data());
        textures.ratio = Texture2D(c.width, c.height, kOrderRed, kTypeFloat, nullptr);
        if (!c.radius.empty()) textures.radius = planeTexture(c.width, c.height, c.radius.data());
        EXPECT_TRUE(ratio(cache, textures.small, lookValues(c.look), textures.ratio));
        return textures;
    }

    Bytes convolved(const BokehCase& c, bool cpuOnly) {
        const Texture2D target = rgbaTexture(c.width, c.height, nullptr);
        EXPECT_TRUE(convolve(cache, texturesOf(c), c.source(), cpuOnly, target));
        return readRgba(target);
    }
};

BokehCase randomCase(int width, int height, int largest, bool spin, const Look& look, unsigned seed) {
    BokehCase c{width,
                height,
                randomRgba(width, height, seed),
                patchyRadius(width, height, largest, seed + 1),
                randomStrip(seed + 2),
                {},
                look};
    if (spin) {
        const zellab::Plane<zellab::Byte> plane = spinIndexPlane(width, height);
        c.records.assign(plane.data(), plane.data() + plane.size());
    }
    return c;
}

// One tile, which OpenGL claims or the processor: so the two pictures show both sides alone.
TEST_F(Convolution, OpenGlAndTheProcessorPaintTheSamePicture) {
    unsigned seed = 20;
    for (const Look look : {Look{1, 0, 0, 0}, Look{1.4f, 0.6f, 2, 0.8f}, Look{0.7f, 0.95f, 3, 0.3f}})
        for (const bool spin : {false, true})
            for (const bool constant : {false, true}) {
                BokehCase c = randomCase(124, 90, 30, spin, look, seed += 3);
                if (constant) c.radius.clear(), c.maximum = 11;
                SCOPED_TRACE(testing::Message() << "intensity " << look.intensity << ", spin " << spin
                                                << ", constant " << constant);
                std::atomic<int> next{0};
                const ConvolutionSource source = c.source();
                const Bytes processor = assemble(computeTiles(source, next, 2), c.width, c.height);
                // A strip of no valid size leaves the whole picture to OpenGL.
                ConvolutionSource noStrip = source;
                noStrip.kernel = {};
                const Texture2D target = rgbaTexture(c.width, c.height, nullptr);
                ASSERT_TRUE(convolve(cache, texturesOf(c), noStrip, false, target));
                const auto d = differenceOf(readRgba(target), processor);
                EXPECT_LE(d.largest, 2);
                EXPECT_LT(d.mean, 0.3);
            }
}

TEST_F(Convolution, WhoeverWinsTheTilesThePictureIsTheSame) {
    const BokehCase c = randomCase(520, 270, 9, false, {1, 0.5f, 1, 0.5f}, 50);
    const Bytes processor = convolved(c, true);
    std::atomic<int> next{0};
    EXPECT_EQ(processor, assemble(computeTiles(c.source(), next, 2), c.width, c.height))
        << "with the processor alone its bytes come through unchanged";
    const auto d = differenceOf(convolved(c, false), processor);
    EXPECT_LE(d.largest, 2);
    EXPECT_LT(d.mean, 0.3);
}

TEST_F(Convolution, WithoutAThreadForTheChoreNothingIsLeftUndone) {
    const BokehCase c = randomCase(520, 270, 9, false, {1, 0.5f, 1, 0.5f}, 70);
    const Bytes expected = convolved(c, true);
    StreamCapture log(stderr);
    const NoThreads alone;
    ASSERT_THROW(std::thread([] {}), std::system_error);
    EXPECT_EQ(convolved(c, true), expected) << "the calling thread computes the tiles";
    EXPECT_LE(differenceOf(convolved(c, false), expected).largest, 2) << "OpenGL paints them all";
    EXPECT_NE(log.text().find("[ERROR  ] Fail to schedule the chore!\n"), std::string::npos);
}

// A pixel that lies on the very edge between two frames of a spinning kernel, in sizes whose inverse's
// inverse is not the size again.
TEST_F(Convolution, BothSidesPutTheEdgeBetweenFramesAtTheSamePixel) {
    constexpr int kWide = 122, kHigh = 122;
    BokehCase c = randomCase(kWide, kHigh, 3, true, {1, 0, 0, 0}, 80);
    std::fill(c.radius.begin(), c.radius.end(), static_cast<unsigned char>(3));
    for (std::size_t i = 0; i < c.strip.size(); ++i) c.strip[i] = i % 1056 / 176 < 3 ? 10 : 250;
    std::fill(c.rgba.begin(), c.rgba.end(), static_cast<unsigned char>(0));
    for (const auto& [x, y] : {std::pair{91, 91}, {91, 30}, {30, 91}, {30, 30}})  // half of the way out
        std::fill_n(c.rgba.begin() + 4 * (y * kWide + x), 3, static_cast<unsigned char>(255));
    ConvolutionSource noStrip = c.source();
    noStrip.kernel = {};
    const Texture2D target = rgbaTexture(kWide, kHigh, nullptr);
    ASSERT_TRUE(convolve(cache, texturesOf(c), noStrip, false, target));
    EXPECT_LE(differenceOf(readRgba(target), convolved(c, true)).largest, 2);
}

TEST_F(Convolution, WhatDoesNotFitDrawsNothing) {
    const BokehCase c = randomCase(40, 30, 5, false, {1, 0, 0, 0}, 60);
    const Texture2D target = rgbaTexture(40, 30, c.rgba.data()), other = rgbaTexture(44, 30, nullptr);
    EXPECT_FALSE(convolve(cache, texturesOf(c), c.source(), true, other)) << "the target has another size";
    ConvolutionSource noStrip = c.source();
    noStrip.kernel.width = 300;
    EXPECT_FALSE(convolve(cache, texturesOf(c), noStrip, true, target)) << "nobody is left to paint";
    ShaderCache empty;
    EXPECT_FALSE(convolve(empty, texturesOf(c), c.source(), true, target)) << "the shader is missing";
    EXPECT_FALSE(convolve(cache, texturesOf(c), c.source(), false, {}));
    EXPECT_EQ(readRgba(target), c.rgba);
}

// Shapes of the free form: at rest it spreads one point over its square, and each parameter changes that.
TEST_F(Convolution, TheFreeShapeFollowsItsParameters) {
    const int side = 64, middle = 16 * side + 48;  // off the centre, where the field bends shapes
    Bytes rgba(side * side * 4, 0), shape(300 * 300);
    std::fill_n(rgba.begin() + 4 * middle, 3, 255);
    for (int i = 0; i < 300 * 300; ++i) shape[static_cast<std::size_t>(i)] = i % 300 < 150 ? 255 : 100;
    const Bytes radius(side * side, 6);
    ConvolutionTextures textures;
    textures.small = rgbaTexture(side, side, rgba.data());
    textures.kernel = planeTexture(300, 300, shape.data());
    textures.radius = planeTexture(side, side, radius.data());
    textures.ratio = Texture2D(side, side, kOrderRed, kTypeFloat, nullptr);
    ASSERT_TRUE(ratio(cache, textures.small, lookValues({1, 0, 0, 0}), textures.ratio));
    const auto draw = [&](const FreeShape& free) {
        const Texture2D target = rgbaTexture(side, side, nullptr);
        EXPECT_TRUE(convolveFree(cache, textures, lookValues({1, 0, 0, 0}), 30, free, target));
        return readRgba(target);
    };
    const auto covered = [](const Bytes& picture) {
        int count = 0;
        for (std::size_t i = 0; i < picture.size(); i += 4) count += picture[i] > 0;
        return count;
    };
    const Bytes rest = draw({});
    EXPECT_EQ(covered(rest), 13 * 13);
    EXPECT_GT(rest[4 * (middle - 5)], rest[4 * (middle + 5)]) << "the bright side stays left";
    EXPECT_LT(covered(draw({0.5f, 0, 0, 0})), 13 * 7 + 1);
    EXPECT_LT(covered(draw({0, 0.8f, 0, 0})), covered(rest));
    EXPECT_GT(covered(draw({0, 0, 0, 0})), 0);
    EXPECT_NE(draw({0, 0, 1, 0}), rest);
    ConvolutionTextures none;
    EXPECT_FALSE(convolveFree(cache, none, lookValues({}), 30, {}, {}));
}

}  // namespace
