#pragma once

#include <limits>

namespace zellab {

/// Smallest radius in pixels that the one-stroke operations accept.
inline constexpr float kSmallestBrush = 2.0f;

/// Truncates toward zero; values beyond an int go to its nearest end and not-a-number to the lower one, so
/// that such a coordinate lies outside every picture and such a radius draws nothing.
inline int truncated(float value) {
    constexpr float kLimit = 2147483648.0f;  // 2^31
    if (value >= kLimit) return std::numeric_limits<int>::max();
    return value >= -kLimit ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

}  // namespace zellab
