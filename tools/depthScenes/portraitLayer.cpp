#include "layer.h"
#include "portrait/portrait.h"

namespace zeldepth {

namespace {

/// Place, pose and light as photographs have them; everything else is left to the seed.
zel::PortraitParams framed(unsigned seed) {
    RandomSource random(seed, 3);
    zel::PortraitParams params;
    params.width = params.height = 2 * kSide;
    params.seed = seed;
    if (random.chance(0.3f)) return params;
    params.headHeight = random.chance(0.4f) ? random.range(0.2f, 0.45f) : random.range(0.4f, 0.75f);
    params.centreX = random.range(0.25f, 0.75f);
    params.centreY = random.range(0.3f, 0.5f);
    params.yaw = random.range(-22, 22);
    params.roll = random.range(-15, 15);
    params.tilt = random.range(-12, 12);
    params.smile = random.range(-0.5f, 1);
    params.lightDirection = random.range(-80, 80);
    params.lightContrast = random.range(0, 1);
    params.exposure = random.range(-1.2f, 0.8f);
    params.noise = random.range(0, 0.8f);
    return params;
}

}  // namespace

Planes renderPortrait(unsigned seed) {
    const zel::Portrait drawn = zel::drawPortrait(framed(seed));
    Planes planes(kPortraitPlanes);
    constexpr std::size_t kRow = 2 * std::size_t{kSide};
    for (std::size_t y = 0; y < kSide; ++y)
        for (std::size_t x = 0; x < kSide; ++x) {
            const std::size_t corner = 2 * y * kRow + 2 * x, i = y * kSide + x;
            unsigned sums[4] = {};
            float depth = 0;
            for (const std::size_t at : {corner, corner + 1, corner + kRow, corner + kRow + 1}) {
                for (std::size_t c = 0; c < 3; ++c) sums[c] += drawn.image.rgba[4 * at + c];
                sums[3] += drawn.person.samples[at];
                depth += drawn.depth[at];
            }
            for (std::size_t c = 0; c < 4; ++c)
                planes.plane(c)[i] = static_cast<unsigned char>((sums[c] + 2) / 4);
            planes.plane(4)[i] = static_cast<unsigned char>(depth * 0.25f * 255 + 0.5f);
        }
    return planes;
}

}  // namespace zeldepth
