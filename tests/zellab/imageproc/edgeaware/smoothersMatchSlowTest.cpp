#include <gtest/gtest.h>

#include "reference/slowSmooth.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/edgeaware/surfaceBlur.h"

namespace {

using namespace zeltest;

Bytes pictureOf(Size size) {
    return size.width > 40 ? patternRgba(size.width, size.height, 71)
                           : randomRgba(size.width, size.height, 72);
}

TEST(DomainTransformMatchesSlow, InBothForms) {
    struct Settings {
        float space, range;
        int iterations;
    };
    for (const Size size : kAwkwardSizes)
        for (const auto& [space, range, n] :
             {Settings{16, 50, 3}, Settings{14, 40, 2}, Settings{2, 500, 1}, Settings{60, 60, 4}}) {
            const int w = size.width, h = size.height;
            const auto compare = [&, space = space, range = range, n = n](const Bytes& picture,
                                                                          int channels) {
                compareWithSlow(
                    size, picture,
                    [&](Bytes& p) { slow::domainTransform(p, w, h, channels, space, range, n); },
                    [&](Bytes& p) {
                        if (channels == 4)
                            zellab::DomainTransformRGBA(rgbaView(p, size), space, range, n, true);
                        else
                            zellab::DomainTransformPlane(planeView(p, size), space, range, n, true);
                    },
                    channels, space, range);
            };
            compare(pictureOf(size), 4);
            compare(randomPlane(w, h, 73), 1);
        }
}

// The sums over the disc, and the trace that the wider first disc leaves everywhere.
TEST(SurfaceBlurMatchesSlow, WithEveryReach) {
    for (const Size size : kAwkwardSizes)
        for (const auto& [radius, threshold] : {std::pair{1, 10}, {2, 1}, {3, 100}, {8, 10}, {13, 37}}) {
            const int w = size.width, h = size.height;
            Bytes mask = randomPlane(w, h, 74);
            for (unsigned char& m : mask) m = m < 60 ? 0 : m;
            compareWithSlow(
                size, pictureOf(size),
                [&, r = radius, t = threshold](Bytes& p) { slow::surfaceBlur(p, w, h, r, t, mask); },
                [&, r = radius, t = threshold](Bytes& p) {
                    ASSERT_TRUE(
                        zellab::SurfaceBlurFilter().Run(rgbaView(p, size), r, t, {mask.data(), w, h}));
                },
                radius, threshold);
        }
}

}  // namespace
