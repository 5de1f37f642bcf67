#pragma once

namespace zellab {

/// Limits an integer to 0..255.
constexpr unsigned char clampToByte(int value) {
    return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

/// Limits to 0..255, then truncates toward zero. NaN becomes 0.
constexpr unsigned char truncateToByte(float value) {
    return static_cast<unsigned char>(value >= 255.0f ? 255.0f : value > 0.0f ? value : 0.0f);
}

}  // namespace zellab
