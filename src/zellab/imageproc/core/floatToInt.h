#pragma once

namespace zellab {

/// Truncates toward zero. Values beyond the type stop at its ends and NaN becomes 0, where the plain
/// conversion would be undefined.
constexpr int truncateToInt(float value) {
    constexpr float kEnd = 2147483648.0f;  // 2^31, the first value that does not fit
    if (value >= kEnd) return 2147483647;
    if (value >= -kEnd) return static_cast<int>(value);
    return value < -kEnd ? -2147483647 - 1 : 0;
}

}  // namespace zellab
