#pragma once

#include <memory>
#include <vector>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Neighbouring lines that one step moves on together, one byte each.
inline constexpr int kLaneGroup = 32;

/// Positions that are blurred between two looks at the ring of samples.
inline constexpr int kChunk = 16;

/// Where the samples of a chunk lie: at position x of a line the window stands on `centre`, will take in
/// `enter`, x + radius + 1, and has let go `leave`, x - radius - 1. Beyond its ends a line repeats its end
/// samples. Each pointer is to the samples of all lines.
struct Taps {
    int count = 0;
    const Byte* enter[kChunk];
    const Byte* centre[kChunk];
    const Byte* leave[kChunk];
};

/// The arithmetic of the stack blur on a bundle of lines: a triangular window of half-width radius + 1 whose
/// weights sum to (radius + 1)^2; the quotient is truncated.
///
/// With p the samples and r the radius, the weighted sum S and its slope D move on by
///     S[x + 1] = S[x] + D[x]
///     D[x] = D[x - 1] + p[x + r + 1] - 2 p[x] + p[x - r - 1],
/// which needs no ring of its own and costs the same for every radius.
class LaneBlur {
public:
    virtual ~LaneBlur() = default;

    /// Stands on position 0. @param first  the samples at positions 0 to min(radius, length - 1)
    virtual void begin(const std::vector<const Byte*>& first) = 0;

    /// Writes the blurred samples of the next taps.count positions, kLaneGroup * groups bytes each, one
    /// position behind the other.
    virtual void advance(const Taps& taps, Byte* out) = 0;
};

struct LaneBlurSpec {
    int radius = 0;          // >= 0, may exceed the line
    int groups = 1;          // groups of kLaneGroup lines
    bool keepAlpha = false;  // every fourth line passes as it is
    platform::SimdLevel simd = platform::SimdLevel::baseline;
};
std::unique_ptr<LaneBlur> makeLaneBlur(const LaneBlurSpec& settings);

/// Up to this radius + 1 the sum times a reciprocal in single precision, truncated, is the exact quotient.
/// The reciprocal c of d = (radius + 1)^2 is rounded up, so c = (1 + e) / d with 0 <= e < 2^-23. For a
/// multiple q * d of d the product is not below q, and rounding keeps it there. The largest sum with quotient
/// q, q * d + d - 1, gives less than q + 1 - 1/d + 256 e, and the rounding to float adds at most 2^-17 below
/// 256; that stays under q + 1 as long as 1/d > 2^-15 + 2^-17, or d < 26214.
inline constexpr int kLastSingleReach = 160;

/// Up to this radius + 1 the sums, at most 255 (radius + 1)^2, fit 31 bits; and up to the next one 63 bits.
inline constexpr int kLast32BitReach = 2901;
inline constexpr int kLast64BitReach = 190'000'000;

/// The smallest float that is not below 1 / (reach * reach).
float reciprocalFromAbove(int reach);

/// An estimate of the reciprocal that is too small by a little more than all rounding errors of a float
/// multiplication: the truncated product is the quotient or one less.
float reciprocalFromBelow(int reach);

std::unique_ptr<LaneBlur> makeAvx2LaneBlur(const LaneBlurSpec& settings);

}  // namespace zellab
