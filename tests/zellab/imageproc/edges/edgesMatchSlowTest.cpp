#include <gtest/gtest.h>

#include "reference/slowEdges.h"
#include "support/everyMachine.h"
#include "support/views.h"
#include "zellab/imageproc/blur/recursiveGaussian.h"
#include "zellab/imageproc/edges/edgeDetect.h"

namespace {

using namespace zeltest;

struct Sigmas {
    float x, y;
};

/// Thresholds; negative ones are found automatically.
struct Limits {
    int low, high;
};

TEST(RecursiveGaussianMatchesSlow, OnPicturesAndPlanes) {
    for (const Size size : kAwkwardSizes)
        for (const int channels : {1, 4}) {
            const int rowBytes = channels * size.width;
            const Bytes picture = randomBytes(static_cast<std::size_t>(rowBytes * size.height), 81);
            for (const Sigmas s : {Sigmas{0.1f, 0.0999f}, Sigmas{0.0f, 0.7f}, Sigmas{1.0f, 1.0f},
                                   Sigmas{2.5f, 9.0f}, Sigmas{250.0f, 300.0f}}) {
                compareWithSlow(
                    size, picture,
                    [&](Bytes& p) {
                        slow::recursiveGaussian(p, size.width, size.height, rowBytes, s.x, s.y);
                    },
                    [&](Bytes& p) {
                        withView(p.data(), size.width, size.height, channels, [&](auto view) {
                            EXPECT_TRUE(zellab::RecursiveGaussianBlur(view, s.x, s.y));
                        });
                    },
                    channels, s.x, s.y);
            }
        }
}

/// Planes that meet ties, chains and every gradient direction: noise, two levels, a few grey levels, waves.
std::vector<Bytes> edgePlanes(int width, int height) {
    const Bytes noise = randomPlane(width, height, 82);
    const Bytes pattern = patternRgba(width, height, 83);
    std::vector<Bytes> planes = {noise, noise, noise, noise};
    for (std::size_t i = 0; i < noise.size(); ++i) {
        planes[1][i] = noise[i] > 230 ? 255 : 0;
        planes[2][i] = static_cast<unsigned char>(noise[i] / 64 * 9 + 100);
        planes[3][i] = pattern[4 * i];
    }
    return planes;
}

TEST(EdgeDetectMatchesSlow, OnNoiseLevelsAndWaves) {
    for (const Size size : {Size{2, 2}, Size{3, 3}, Size{3, 17}, Size{21, 4}, Size{64, 51}, Size{77, 120}})
        for (const Bytes& plane : edgePlanes(size.width, size.height))
            for (const Limits limits : {Limits{5, 10}, Limits{20, 8}, Limits{0, 0}, Limits{30, 90},
                                        Limits{1, 130}, Limits{-1, -1}}) {
                const bool automatic = limits.low < 0;
                compareWithSlow(
                    size, plane,
                    [&](Bytes& p) {
                        p = slow::cannyEdges(plane, size.width, size.height, limits.low, limits.high,
                                             automatic);
                    },
                    [&](Bytes& p) {
                        ASSERT_TRUE(zellab::EdgeDetectCanny({plane.data(), size.width, size.height},
                                                            planeView(p, size), limits.low, limits.high,
                                                            automatic));
                    },
                    limits.low, limits.high);
            }
}

}  // namespace
