#include "zellab/imageproc/poisson/transformSize.h"

#include <gtest/gtest.h>

namespace {

using zellab::growToTransformSize;
using zellab::Span;
using zellab::transformPadding;

int largestPrimeFactor(int n) {
    int largest = 1;
    for (int f = 2; f * f <= n; ++f)
        while (n % f == 0) {
            largest = f;
            n /= f;
        }
    return n > 1 ? n : largest;
}

TEST(TransformSize, PaddingIsTheLeastThatMakesTheTransformFast) {
    for (int side = 3; side <= 5001; ++side) {
        const int padding = transformPadding(side);
        ASSERT_LE(largestPrimeFactor(2 * (side + padding) - 2), 7) << side;
        for (int less = 0; less < padding; ++less)
            ASSERT_GT(largestPrimeFactor(2 * (side + less) - 2), 7) << side;
    }
    EXPECT_EQ(transformPadding(5002), 0) << "longer than the table";
    EXPECT_EQ(transformPadding(1), 0);
}

TEST(TransformSize, PaddingMovesToTheOtherSideAtThePicturesEnds) {
    // 60 pixels make a length of 118 = 2 * 59; the next is 120, one pixel more. 48 pixels: 94 -> 96.
    // 140 pixels: 278 -> 280. 150: 298 -> 300. 68: 134 -> 140, three pixels more.
    ASSERT_EQ(transformPadding(68), 3);
    const auto grow = [](int begin, int end, int size) { return growToTransformSize({begin, end}, size); };
    const auto expectSpan = [](Span span, int begin, int end) {
        EXPECT_EQ(span.begin, begin);
        EXPECT_EQ(span.end, end);
    };
    expectSpan(grow(20, 88, 200), 19, 90);  // half of the padding, rounded down, in front
    expectSpan(grow(0, 68, 200), 0, 71);
    expectSpan(grow(132, 200, 200), 129, 200);
    expectSpan(grow(1, 69, 70), 1, 69);  // does not fit: stays
}

}  // namespace
