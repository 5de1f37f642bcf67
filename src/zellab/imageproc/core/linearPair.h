#pragma once

#include <climits>
#include <cmath>
#include <optional>

#include "zellab/imageproc/core/combinePixels.h"

/// Operations on two pictures that are linear but for their own rounding, done in whole numbers where these
/// give the same bytes for every pair of bytes. That is tried out for each operation, not assumed.

namespace zellab {

/// (first * factors[0] + second * factors[1] + bias) >> shift, limited to a byte.
struct LinearPair {
    int factors[2], bias, shift;
};

/// The whole-number form of op(first, second), which is about first * a + second * b, cut off and limited. None
/// where no bias meets what op gives for all 65,536 pairs of bytes.
template <typename Op>
ZEL_TARGET_AVX2 std::optional<LinearPair> linearPairOf(const Op& op, double a, double b) {
    constexpr double kMostFactor = 32767;
    const double largest = std::max(std::abs(a), std::abs(b));
    if (!(largest < kMostFactor / 2)) return std::nullopt;
    int shift = 15;
    while (std::round(std::ldexp(largest, shift)) > kMostFactor) --shift;
    const int one = 1 << shift;
    // The factors' sum is that of a and b, so that equal bytes lose nothing.
    const int second = static_cast<int>(std::lround(std::ldexp(b, shift)));
    const int first = static_cast<int>(std::lround(std::ldexp(a + b, shift))) - second;
    if (std::abs(first) > static_cast<int>(kMostFactor)) return std::nullopt;
    int least = INT_MIN, most = INT_MAX;  // the bias must lie between
    for (int i = 0; i < 256; ++i)
        for (int j = 0; j < 256; ++j) {
            const int wanted = op(i, j), sum = i * first + j * second;
            const int lower = wanted == 0 ? INT_MIN : wanted * one - sum;
            const int upper = wanted == 255 ? INT_MAX : wanted * one + one - 1 - sum;
            least = least > lower ? least : lower;
            most = most < upper ? most : upper;
        }
    if (least > most) return std::nullopt;
    return LinearPair{{first, second}, least, shift};
}

/// target = pair(first, second) for bytes 0 to 2 of a row's pixels, eight at a time; returns how many were done.
int combineLinearAvx2(Byte* target, const Byte* first, const Byte* second, int width, const LinearPair& pair);

/// As combinePixels, for an operation that is about first * a + second * b.
template <typename Op>
void combineLinear(ImageView target, ConstImageView first, ConstImageView second, const Op& op, double a,
                   double b) {
    constexpr std::size_t kWorthTrying = 1 << 18;  // pixels that repay the trial of all pairs of bytes
    std::optional<LinearPair> pair;
    if (platform::simdLevel() == platform::SimdLevel::avx2 &&
        sampleCount(target.width, target.height) >= kWorthTrying)
        pair = linearPairOf(op, a, b);
    if (!pair) return combinePixels(target, first, second, op);
    const auto rest = combineRowFor<4, Op>();
    parallelRows(target.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const int x = combineLinearAvx2(target.row(y), first.row(y), second.row(y), target.width, *pair);
            if (x < target.width)
                rest(target.at(x, y), first.at(x, y), second.at(x, y), target.width - x, op);
        }
    });
}

}  // namespace zellab
