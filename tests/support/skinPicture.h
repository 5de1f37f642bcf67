#pragma once

#include <cmath>

#include "facepoints/faceData.h"
#include "support/everyMachine.h"

/// Pictures on which the skin pipelines find something to do.

namespace zeltest {

/// Skin with a gentle shade and a little noise, eyes, a mouth and some dots, before a bluish ground.
inline Bytes faceLike(Size size, unsigned seed) {
    Bytes rgba = randomRgba(size.width, size.height, seed);
    const float cx = static_cast<float>(size.width) / 2, cy = static_cast<float>(size.height) / 2;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const float u = (static_cast<float>(x) - cx) / cx, v = (static_cast<float>(y) - cy) / cy;
            const bool skin = u * u * 2 + v * v * 1.5f < 1, feature = std::fabs(v * 4 - 1) < 0.2f && skin;
            const bool dot = skin && x % 23 < 3 && y % 19 < 3;
            const float shade = 1 - 0.3f * u - 0.2f * v, base[3] = {190, 145, 120},
                        ground[3] = {70, 100, 160};
            unsigned char* p = &rgba[static_cast<std::size_t>(y * size.width + x) * 4];
            for (int c = 0; c < 3; ++c) {
                const float value = skin ? base[c] * shade * (feature ? 0.5f : dot ? 0.9f : 1) : ground[c];
                p[c] = static_cast<unsigned char>(value + static_cast<float>(p[c] % 9));
            }
        }
    return rgba;
}

inline zellab::FaceData faceIn(Size size) {
    zellab::FaceData face;
    face.left = size.width / 6, face.right = size.width * 5 / 6;
    face.top = size.height / 8, face.bottom = size.height * 7 / 8;
    for (int i = 0; i < 170; ++i) {
        const float angle = static_cast<float>(i) * 0.37f;
        face.points[i] = {static_cast<float>(size.width) * (0.5f + 0.3f * std::cos(angle)),
                          static_cast<float>(size.height) * (0.5f + 0.1f * std::sin(angle))};
    }
    face.pointCount = 170;
    return face;
}

}  // namespace zeltest
