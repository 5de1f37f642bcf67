#include "zellab/imageproc/blur/stackBlur.h"

#include <gtest/gtest.h>

#include <climits>

#include "support/randomImage.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlurLanes.h"

namespace {

using zellab::CStackBlur;
using zeltest::Bytes;

// With the radius far beyond the line both ends weigh almost the same: 255 * (1/2 - a little), truncated.
// The window's sum passes 32 bits here, and at the last two radii 64.
TEST(StackBlur, RadiiFarBeyondTheLineAverageItsEnds) {
    for (int radius : {2900, 5000, 100'000, 190'000'000, INT_MAX}) {
        Bytes row = {0, 255};
        CStackBlur::StackBlurExGray({row.data(), 2, 1}, radius, 1);
        EXPECT_EQ(row, (Bytes{127, 127})) << radius;
    }
}

// At the widest radii a single sample that is less by one takes the 2^60th part from every sum: enough for the value
// below, and without it the flat line stays.
TEST(StackBlur, WidestRadiiTruncateExactly) {
    for (const int radius : {zellab::kLast64BitReach, INT_MAX - 1, INT_MAX})
        for (const int value : {1, 127, 128, 255}) {
            Bytes line(301, static_cast<unsigned char>(value));
            line[150] = static_cast<unsigned char>(value - 1);
            CStackBlur::StackBlurExGray({line.data(), 301, 1}, radius, 1);
            EXPECT_EQ(line, Bytes(301, static_cast<unsigned char>(value - 1))) << radius;
            Bytes flat(301, static_cast<unsigned char>(value));
            CStackBlur::StackBlurExGray({flat.data(), 301, 1}, radius, 1);
            EXPECT_EQ(flat, Bytes(301, static_cast<unsigned char>(value))) << radius;
        }
}

// The exact quotient turns at multiples of the divisor and nowhere else; the rounded product is monotone, so
// these sums decide all others.
TEST(StackBlur, ReciprocalsDivideExactlyAtEveryTurn) {
    for (int reach = 1; reach <= zellab::kLast32BitReach; ++reach) {
        const int divisor = reach * reach;
        const float above = zellab::reciprocalFromAbove(reach), below = zellab::reciprocalFromBelow(reach);
        for (int q = 0; q < 256; ++q)
            for (int sum : {q * divisor, q * divisor + (q < 255 ? divisor - 1 : 0)}) {
                if (reach <= zellab::kLastSingleReach) {
                    ASSERT_EQ(static_cast<int>(static_cast<float>(sum) * above), q) << reach;
                }
                const int estimate = static_cast<int>(static_cast<float>(sum) * below);
                ASSERT_TRUE(estimate == q || estimate == q - 1) << reach << ' ' << sum;
            }
    }
}

}  // namespace
