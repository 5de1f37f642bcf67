#include "zellab/imageproc/edgeaware/surfaceBlur.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "support/guardedBytes.h"
#include "support/randomImage.h"

namespace {

using zeltest::Bytes;

Bytes blurred(Bytes rgba, int width, int radius, int threshold, const unsigned char* mask = nullptr) {
    const int height = static_cast<int>(rgba.size()) / 4 / width;
    EXPECT_TRUE(zellab::SurfaceBlurFilter().Run({rgba.data(), width, height}, radius, threshold,
                                                {mask, width, height}));
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

TEST(SurfaceBlur, EvensOutFaintNoiseAndKeepsTheEdge) {
    constexpr int kWidth = 40;
    Bytes picture = zeltest::randomRgba(kWidth, 40, 3);
    for (std::size_t i = 0; i < picture.size(); ++i)
        picture[i] = static_cast<unsigned char>((i / 4 % kWidth < 20 ? 60 : 180) + picture[i] % 9);
    const Bytes out = blurred(picture, kWidth, 6, 20);
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (i % 4 == 3) {
            ASSERT_EQ(out[i], picture[i]) << "alpha";
        } else {
            ASSERT_NEAR(out[i], i / 4 % kWidth < 20 ? 64 : 184, 2) << "byte " << i;
        }
    }
}

// One row of a radius of 1 around the middle, by hand. Threshold 1 weighs distances 0, 1, 2 by 255, 159, 63.
TEST(SurfaceBlur, WeighsByDistanceInValue) {
    const auto middleOf = [](int left, int centre, int right) {
        Bytes row(9 * 4, 0);
        row[4 * 4] = static_cast<unsigned char>(centre);
        row[3 * 4] = static_cast<unsigned char>(left);
        row[5 * 4] = static_cast<unsigned char>(right);
        return blurred(row, 9, 1, 1)[4 * 4];
    };
    EXPECT_EQ(middleOf(103, 100, 97), 100);  // beyond the reach of the weights
    // (2 * 255 * 100 + 159 * 101 + 63 * 102) / 732 = 100.39; with the second neighbour a lone 102: 100.22.
    EXPECT_EQ(middleOf(101, 100, 102), 100);
    // The centre counts twice: 2 * 255 against 2 * 159 gives 100.38; counted once it would be 100.56.
    EXPECT_EQ(middleOf(101, 100, 101), 100);
    EXPECT_EQ(middleOf(2, 0, 2), 2);  // black never counts, so its neighbours decide
    EXPECT_EQ(middleOf(3, 0, 3), 0);  // unless they are out of reach as well
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

TEST(SurfaceBlur, TheMaskChoosesWhatIsReplaced) {
    const Bytes picture = zeltest::patternRgba(50, 40, 8), all = blurred(picture, 50, 5, 60);
    Bytes mask = zeltest::randomPlane(50, 40, 9);
    for (auto& b : mask) b = b < 100 ? b : 0;
    const Bytes some = blurred(picture, 50, 5, 60, mask.data());
    for (std::size_t i = 0; i < picture.size(); ++i) ASSERT_EQ(some[i], (mask[i / 4] ? all : picture)[i]);
    EXPECT_NE(all, picture);
}

TEST(SurfaceBlur, BadArgumentsAndOddShapes) {
    zellab::SurfaceBlurFilter filter;
    Bytes picture = zeltest::randomRgba(10, 10, 4);
    const Bytes before = picture;
    EXPECT_FALSE(filter.Run({}, 3, 10, {}));
    EXPECT_FALSE(filter.Run({picture.data(), 10, 10}, 0, 10, {}));
    EXPECT_EQ(picture, before);
    EXPECT_EQ(blurred(picture, 10, 3, INT_MIN), blurred(picture, 10, 3, 1));
    EXPECT_EQ(blurred(picture, 10, INT_MAX, INT_MAX), blurred(picture, 10, 100, 100));
    for (const auto& [width, height] : {std::pair{1, 1}, std::pair{1, 700}, std::pair{700, 1}}) {
        zeltest::GuardedBytes buffer(static_cast<std::size_t>(width * height * 4));
        EXPECT_TRUE(filter.Run({buffer.data(), width, height}, 9, 30, {}));
        EXPECT_TRUE(buffer.guardsIntact());
    }
}

}  // namespace
