#include <gtest/gtest.h>

#include "reference/slowSmooth.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/edgeaware/surfaceBlur.h"

namespace {

using zeltest::Bytes;
using zeltest::Size;

Bytes pictureOf(Size size) {
    return size.width > 40 ? zeltest::patternRgba(size.width, size.height, 71)
                           : zeltest::randomRgba(size.width, size.height, 72);
}

TEST(DomainTransformMatchesSlow, InBothForms) {
    struct Settings {
        float space, range;
        int iterations;
    };
    for (const Size size : zeltest::kAwkwardSizes)
        for (const auto& [space, range, n] :
             {Settings{16, 50, 3}, Settings{14, 40, 2}, Settings{2, 500, 1}, Settings{60, 60, 4}}) {
            const int w = size.width, h = size.height;
            const Bytes rgba = pictureOf(size), plane = zeltest::randomPlane(w, h, 73);
            Bytes expectedRgba = rgba, expectedPlane = plane;
            slow::domainTransform(expectedRgba, w, h, 4, space, range, n);
            slow::domainTransform(expectedPlane, w, h, 1, space, range, n);
            SCOPED_TRACE(testing::Message() << w << " by " << h << ", " << space << ", " << range);
            zeltest::onEveryMachine([&, space = space, range = range, n = n] {
                Bytes four = rgba, one = plane;
                zellab::DomainTransformRGBA({four.data(), w, h}, space, range, n, true);
                zellab::DomainTransformPlane({one.data(), w, h}, space, range, n, true);
                ASSERT_TRUE(zeltest::sameSamples(expectedRgba, four, w * 4));
                ASSERT_TRUE(zeltest::sameSamples(expectedPlane, one, w));
            });
            ASSERT_FALSE(HasFailure());
        }
}

// The sums over the disc, and the trace that the wider first disc leaves everywhere.
TEST(SurfaceBlurMatchesSlow, WithEveryReach) {
    for (const Size size : zeltest::kAwkwardSizes)
        for (const auto& [radius, threshold] : {std::pair{1, 10}, {2, 1}, {3, 100}, {8, 10}, {13, 37}}) {
            const int w = size.width, h = size.height;
            const Bytes rgba = pictureOf(size);
            Bytes mask = zeltest::randomPlane(w, h, 74), expected = rgba;
            for (unsigned char& m : mask) m = m < 60 ? 0 : m;
            slow::surfaceBlur(expected, w, h, radius, threshold, mask);
            SCOPED_TRACE(testing::Message() << w << " by " << h << ", " << radius << ", " << threshold);
            zeltest::compareEverywhere(
                expected, rgba, w * 4, [&, radius = radius, threshold = threshold](Bytes& actual) {
                    ASSERT_TRUE(zellab::SurfaceBlurFilter().Run({actual.data(), w, h}, radius, threshold,
                                                                {mask.data(), w, h}));
                });
            ASSERT_FALSE(HasFailure());
        }
}

}  // namespace
