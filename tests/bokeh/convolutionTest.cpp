#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bokeh/passes.h"
#include "bokeh/shaderKeys.h"
#include "bokeh/spinIndex.h"
#include "glScene.h"
#include "support/streamCapture.h"

namespace {

using namespace zellab::Bokeh;
using zeltest::BokehCase;
using zeltest::Bytes;

class Convolution : public zeltest::GlScene {
protected:
    ConvolutionTextures texturesOf(const BokehCase& c) {
        ConvolutionTextures textures;
        textures.small = zeltest::rgbaTexture(c.width, c.height, c.rgba.data());
        textures.kernel = zeltest::planeTexture(kStripWidth, kStripHeight, c.strip.data());
        textures.ratio = Texture2D(c.width, c.height, kOrderRed, kTypeFloat, nullptr);
        if (!c.radius.empty()) textures.radius = zeltest::planeTexture(c.width, c.height, c.radius.data());
        EXPECT_TRUE(ratio(cache, textures.small, lookValues(c.look), textures.ratio));
        return textures;
    }

    Bytes convolved(const BokehCase& c, bool cpuOnly) {
        const Texture2D target = zeltest::rgbaTexture(c.width, c.height, nullptr);
        EXPECT_TRUE(convolve(cache, texturesOf(c), c.source(), cpuOnly, target));
        return zeltest::readRgba(target);
    }
};

BokehCase randomCase(int width, int height, int largest, bool spin, const Look& look, unsigned seed) {
    BokehCase c{width,
                height,
                zeltest::randomRgba(width, height, seed),
                zeltest::patchyRadius(width, height, largest, seed + 1),
                zeltest::randomStrip(seed + 2),
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
                const Bytes processor = zeltest::assemble(computeTiles(source, next, 2), c.width, c.height);
                // A strip of no valid size leaves the whole picture to OpenGL.
                ConvolutionSource noStrip = source;
                noStrip.kernel = {};
                const Texture2D target = zeltest::rgbaTexture(c.width, c.height, nullptr);
                ASSERT_TRUE(convolve(cache, texturesOf(c), noStrip, false, target));
                const auto d = zeltest::differenceOf(zeltest::readRgba(target), processor);
                std::printf("largest %d, mean %.4f\n", d.largest, d.mean);
                EXPECT_LE(d.largest, 2);
                EXPECT_LT(d.mean, 0.3);
            }
}

TEST_F(Convolution, WhoeverWinsTheTilesThePictureIsTheSame) {
    const BokehCase c = randomCase(520, 270, 9, false, {1, 0.5f, 1, 0.5f}, 50);
    const Bytes processor = convolved(c, true);
    std::atomic<int> next{0};
    EXPECT_EQ(processor, zeltest::assemble(computeTiles(c.source(), next, 2), c.width, c.height))
        << "with the processor alone its bytes come through unchanged";
    const auto d = zeltest::differenceOf(convolved(c, false), processor);
    EXPECT_LE(d.largest, 2);
    EXPECT_LT(d.mean, 0.3);
}

}  // namespace
