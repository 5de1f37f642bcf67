#include "noiseField.h"

#include "portraitMath.h"
#include "randomSource.h"

namespace zel::drawing {

namespace {

float fade(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

/// Lattice coordinates stay far inside int, whatever the picture's scale.
float bounded(float v) {
    return std::min(std::max(v, -1e8f), 1e8f);
}

/// Product of the lattice point's random slope with the offset from it.
float slope(int x, int y, float dx, float dy, std::uint32_t seed) {
    static constexpr float kSlopes[8][2] = {{1, 0},
                                            {-1, 0},
                                            {0, 1},
                                            {0, -1},
                                            {0.7071f, 0.7071f},
                                            {-0.7071f, 0.7071f},
                                            {0.7071f, -0.7071f},
                                            {-0.7071f, -0.7071f}};
    const float* s = kSlopes[latticeHash(x, y, seed) >> 29];
    return s[0] * dx + s[1] * dy;
}

}  // namespace

float smoothNoise(float x, float y, std::uint32_t seed) {
    x = bounded(x);
    y = bounded(y);
    const float fx = std::floor(x), fy = std::floor(y);
    const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
    const float dx = x - fx, dy = y - fy, u = fade(dx), v = fade(dy);
    const float top = mix(slope(ix, iy, dx, dy, seed), slope(ix + 1, iy, dx - 1, dy, seed), u);
    const float bottom =
        mix(slope(ix, iy + 1, dx, dy - 1, seed), slope(ix + 1, iy + 1, dx - 1, dy - 1, seed), u);
    return 1.4f * mix(top, bottom, v);
}

float cloudNoise(float x, float y, int octaves, std::uint32_t seed) {
    float sum = 0, weight = 0.55f, scale = 1;
    for (int i = 0; i < octaves; ++i, weight *= 0.5f, scale *= 2.03f)
        sum += weight * smoothNoise(x * scale, y * scale, seed + static_cast<std::uint32_t>(i) * 101u);
    return sum;
}

float cellNoise(float x, float y, std::uint32_t seed) {
    x = bounded(x);
    y = bounded(y);
    const float fx = std::floor(x), fy = std::floor(y);
    const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
    float nearest = 4;
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i) {
            const std::uint32_t h = latticeHash(ix + i, iy + j, seed);
            const float px = static_cast<float>(i) + static_cast<float>(h & 0xFFFF) / 65536.0f - (x - fx);
            const float py = static_cast<float>(j) + static_cast<float>(h >> 16) / 65536.0f - (y - fy);
            nearest = std::min(nearest, px * px + py * py);
        }
    return std::sqrt(nearest);
}

float visibleShare(float featureSize, float pixelSize) {
    return clamp01(featureSize / pixelSize - 0.8f);
}

}  // namespace zel::drawing
