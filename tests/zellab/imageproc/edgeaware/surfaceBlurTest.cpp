#include "zellab/imageproc/edgeaware/surfaceBlur.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "support/randomImage.h"

namespace {

using zeltest::Bytes;

Bytes blurred(Bytes rgba, int width, int radius, int threshold) {
    const int height = static_cast<int>(rgba.size()) / 4 / width;
    EXPECT_TRUE(zellab::SurfaceBlurFilter().Run({rgba.data(), width, height}, radius, threshold,
                                                {nullptr, width, height}));
    return rgba;
}

// The zero rim around the picture must not show, nor sums overflow, at the largest disc of the largest value.
TEST(SurfaceBlur, UniformPicturesStay) {
    for (int value : {1, 90, 255})
        for (int radius : {1, 3, 20, 100, INT_MAX}) {
            const Bytes flat(31 * 210 * 4, static_cast<unsigned char>(value));
            ASSERT_EQ(blurred(flat, 31, radius, 100), flat) << "value " << value << ", radius " << radius;
        }
}

// At threshold 10 the weights are 255.4 - 9.6 d, truncated: a whole 217 at distance 4. A radius of 1 holds
// one neighbour on either side.
TEST(SurfaceBlur, WeightsThatEndOnAWholeNumberKeepIt) {
    constexpr int kCentre = 100;
    for (const int far : {4, 9, 14, 19, 24}) {
        const auto weight = [](int distance) { return (2554 - 96 * distance) / 10; };
        for (int near = -26; near <= 26; ++near) {
            Bytes row(9 * 4, 0);
            row[3 * 4] = static_cast<unsigned char>(kCentre + near);
            row[4 * 4] = kCentre;
            row[5 * 4] = static_cast<unsigned char>(kCentre + far);
            const int twice = near == 0 ? 2 : 1;  // a value equal to the centre counts on both ways
            const int weights[] = {2 * weight(0), twice * weight(std::abs(near)), weight(far)};
            const int sum = weights[0] + weights[1] + weights[2];
            const int moment =
                weights[0] * kCentre + weights[1] * (kCentre + near) + weights[2] * (kCentre + far);
            ASSERT_EQ(blurred(row, 9, 1, 10)[4 * 4], (moment + sum / 2) / sum) << near << ' ' << far;
        }
    }
}

}  // namespace
