#pragma once

#include <algorithm>
#include <cmath>

#include "reference/slowColour.h"

namespace slow {

/// Darkening towards the corners, pixel by pixel, each step in single precision.
inline void vignette(Bytes& image, int width, int height, float strength, float radius, float softness) {
    const auto halfSquare = [](int i, int count) {
        const float off = (static_cast<float>(i) + 0.5f) * 2.0f / static_cast<float>(count) - 1.0f;
        return 0.5f * off * off;
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const float distance = std::sqrt(halfSquare(x, width) + halfSquare(y, height));
            const float slope = 1.0f / std::max(softness, 1.0f / 65536);
            const float t = std::min(std::max((distance - radius) * slope, 0.0f), 1.0f);
            const float gain = 1.0f - strength * (t * t * (3.0f - 2.0f * t));
            for (int c = 0; c < 3; ++c) {
                unsigned char& byte = image[static_cast<std::size_t>((y * width + x) * 4 + c)];
                byte = static_cast<unsigned char>(static_cast<float>(byte) * gain + 0.5f);
            }
        }
}

}  // namespace slow
