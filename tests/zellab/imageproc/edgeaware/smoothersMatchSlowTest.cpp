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

/// Noise that grows from nothing at the left to everything at the right, in a picture of several tiles.
Bytes unevenSurface(Size size) {
    Bytes picture = randomRgba(size.width, size.height, 75);
    for (std::size_t i = 0; i < picture.size(); ++i) {
        const int column = static_cast<int>(i / 4) % size.width;
        picture[i] = static_cast<unsigned char>(120 + (picture[i] - 120) * column / size.width);
    }
    return picture;
}

const std::vector<Size> kSurfaceSizes = [] {
    std::vector<Size> sizes = kAwkwardSizes;
    sizes.push_back({531, 37});
    return sizes;
}();

// The sums over the disc, and the trace that the wider first disc leaves everywhere. Small discs with a short
// reach are summed pixel by pixel, by how far apart the values around lie: hardly, a little, wholly.
TEST(SurfaceBlurMatchesSlow, WithEveryReach) {
    for (const Size size : kSurfaceSizes)
        for (const auto& [radius, threshold] :
             {std::pair{1, 10}, {2, 1}, {3, 100}, {8, 10}, {9, 10}, {4, 12}, {13, 37}}) {
            const int w = size.width, h = size.height;
            Bytes mask = randomPlane(w, h, 74);
            for (unsigned char& m : mask) m = m < 60 ? 0 : m;
            compareWithSlow(
                size, size.width > 200 ? unevenSurface(size) : pictureOf(size),
                [&, r = radius, t = threshold](Bytes& p) { slow::surfaceBlur(p, w, h, r, t, mask); },
                [&, r = radius, t = threshold](Bytes& p) {
                    ASSERT_TRUE(
                        zellab::SurfaceBlurFilter().Run(rgbaView(p, size), r, t, {mask.data(), w, h}));
                },
                radius, threshold);
        }
}

}  // namespace
