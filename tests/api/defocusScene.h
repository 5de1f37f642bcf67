#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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
        picture = drawnRgba(kWidth, kHeight, [&](int x, int y) {
            std::array<int, 3> colour;
            for (std::size_t c = 0; c < 3; ++c)
                colour[c] = colours[static_cast<std::size_t>(3 * (y / 9 * 32 + x / 11)) + c] * 15 / 16 +
                            grain[static_cast<std::size_t>(4 * (y * kWidth + x)) + c] % 8;
            return colour;
        });
        for (int y = 60; y < 240; ++y) std::fill_n(depth.begin() + y * kWidth + 100, 120, 220);
    }

    /// A strip of six frames whose opening is half a disc, so that turning it shows.
    static Bytes shape() {
        const auto half = [](int x, int y) {
            const int dx = x % 176 - 88, dy = y - 88;
            return std::array{dx * dx + dy * dy < 80 * 80 && dx > 0 ? 255 : 0, 0, 0};
        };
        return drawnRgba(1056, 176, half, 0);
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
