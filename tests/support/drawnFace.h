#pragma once

#include <cmath>

#include "facepoints/faceTemplate.h"
#include "support/randomImage.h"

namespace zeltest {

/// A face as the landmarks tell it, lit from the right: skin with spots, and eyes.
inline Bytes drawnFace(int width, int height) {
    Bytes pixels = randomRgba(width, height, 3);
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    std::size_t i = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, i += 4) {
            const auto fx = static_cast<float>(x), fy = static_cast<float>(y);
            const auto isNear = [&](int a, int b, float radius) {
                const auto &p = zellab::kTemplateLandmarks[static_cast<std::size_t>(a)],
                           &q = zellab::kTemplateLandmarks[static_cast<std::size_t>(b)];
                return std::hypot(fx - (p.x + q.x) / 2 * w, fy - (p.y + q.y) / 2 * h) < radius * w;
            };
            const bool isSpot = std::hypot(x % 19 - 9, y % 23 - 11) < 2.5;
            const bool isEye = isNear(21, 25, 0.05f) || isNear(67, 71, 0.05f);
            const bool isIris = isNear(24, 24, 0.035f) || isNear(70, 70, 0.035f);
            const float light = isIris ? 0.2f : isSpot ? 0.6f : 0.75f + 0.25f * fx / w;
            const float skin[] = {200, 156, 132};
            for (std::size_t c = 0; c < 3; ++c)
                pixels[i + c] = static_cast<unsigned char>((isEye ? 210 : skin[c]) * light +
                                                           static_cast<float>(pixels[i + c] % 5));
        }
    return pixels;
}

}  // namespace zeltest
