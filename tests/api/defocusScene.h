#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "support/randomImage.h"
#include "support/streamCapture.h"
#include "zel_effects/offscreenContext.h"
#include "zel_effects/zel_effects.h"

namespace zeltest {

using Render = DefocusCore::ZelDepthDefocusRender;

/// A picture of sharp tiles with a little grain, whose middle lies nearer than the rest.
struct DefocusScene {
    static constexpr int kWidth = 320, kHeight = 240;
    Bytes picture;
    Bytes depth = Bytes(kWidth * kHeight, 20);
    float face[4] = {0.4f, 0.35f, 0.2f, 0.3f};

    DefocusScene() {
        const Bytes colours = randomBytes(3 * 32 * 32, 3), grain = randomRgba(kWidth, kHeight, 4);
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                for (std::size_t c = 0; c < 3; ++c)
                    picture.push_back(static_cast<unsigned char>(
                        colours[static_cast<std::size_t>(3 * (y / 9 * 32 + x / 11)) + c] * 15 / 16 +
                        grain[picture.size()] % 8));
                picture.push_back(255);
            }
        for (int y = 60; y < 240; ++y) std::fill_n(depth.begin() + y * kWidth + 100, 120, 220);
    }

    /// A strip of six frames whose opening is half a disc, so that turning it shows.
    static Bytes shape() {
        constexpr int kFrame = 176, kAcross = 6 * kFrame;
        Bytes rgba(std::size_t{4} * kAcross * kFrame, 0);
        for (int y = 0; y < kFrame; ++y)
            for (int x = 0; x < kAcross; ++x) {
                const int dx = x % kFrame - kFrame / 2, dy = y - kFrame / 2;
                if (dx * dx + dy * dy < 80 * 80 && dx > 0)
                    rgba[static_cast<std::size_t>(4 * (y * kAcross + x))] = 255;
            }
        return rgba;
    }

    /// A render that is ready to run, with the built shaders.
    void prepare(Render& render, const char* shapeName = "defocus_half") const {
        Bytes strip = shape();
        render.setResourcePath("", ZEL_ASSETS "/bokeh");
        ASSERT_TRUE(render.SetBokehImage(shapeName, strip.data(), 1056, 176));
        ASSERT_TRUE(render.SetDepthPlane(depth.data(), kWidth, kHeight));
    }

    struct Options {
        int level = 60;
        bool useHair = false, context = true;
        float focusX = 0.5f, focusY = 0.5f;
    };

    /// The form in place. An empty result means that the render refused.
    Bytes inPlace(Render& render) const { return inPlace(render, {}); }
    Bytes inPlace(Render& render, const Options& o) const {
        Bytes image = picture;
        float faces[4] = {face[0], face[1], face[2], face[3]};
        const bool ran = render.Run(image.data(), kWidth, kHeight, 1, faces, o.focusX, o.focusY, o.level,
                                    1.0f, o.useHair, o.context, 1.0f, 0.5f, 0.0f);
        return ran ? image : Bytes();
    }
};

/// Root of the mean squared difference of the colours of two pictures of one size, in levels.
inline double distance(const Bytes& a, const Bytes& b) {
    if (a.size() != b.size() || a.empty()) return 256;
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (i % 4 != 3) sum += (a[i] - b[i]) * (a[i] - b[i]);
    return std::sqrt(sum / (0.75 * static_cast<double>(a.size())));
}

/// The pixels of a rectangle.
inline Bytes cut(const Bytes& rgba, int width, int left, int top, int across, int down) {
    Bytes part;
    for (int y = top; y < top + down; ++y) {
        const auto row = rgba.begin() + 4 * (y * width + left);
        part.insert(part.end(), row, row + 4 * across);
    }
    return part;
}

/// A test with a context of its own, as a host makes it.
class WithContext : public testing::Test {
protected:
    void SetUp() override {
        if (!m_context.isCurrent()) GTEST_SKIP() << "no OpenGL here: " << m_context.failedCall();
    }
    DefocusScene scene;

private:
    zellab::OffscreenContext m_context;
};

}  // namespace zeltest
