#include "background.h"
#include "noiseField.h"
#include "randomSource.h"

namespace zel::drawing {

namespace {

float chosen(unsigned seed, int which) {
    return unitOf(latticeHash(which, 5, seed * 7u + 1u));
}

Colour hueOf(float choice) {
    const Colour kHues[] = {fromSrgb(126, 134, 142), fromSrgb(168, 150, 128), fromSrgb(96, 112, 118),
                            fromSrgb(150, 122, 112), fromSrgb(180, 178, 170), fromSrgb(86, 92, 108),
                            fromSrgb(120, 132, 110)};
    return kHues[std::min(6, static_cast<int>(choice * 7))];
}

float box(float x, float y, float left, float top, float right, float bottom) {
    return x >= left && x < right && y >= top && y < bottom ? 1.0f : 0.0f;
}

/// A painted studio cloth with a pool of light on it.
Scenery plainAt(unsigned seed, float x, float y) {
    const float cloud = cloudNoise(x * 3.2f, y * 3.2f, 5, seed + 3u);
    const float pool = bell(x, y, 0.3f * (chosen(seed, 1) - 0.5f), 0.42f, 0.62f, 0.6f);
    const Colour cloth = hueOf(chosen(seed, 2)) * (0.42f + 0.75f * pool + 0.16f * cloud);
    return {cloth, 0.22f - 0.03f * y};
}

Scenery windowAt(unsigned seed, float x, float y, float left) {
    const float u = (x - left) / 0.34f, v = (y - 0.06f) / 0.42f;
    const bool bar = std::fabs(u - 0.5f) < 0.03f || std::fabs(v - 0.5f) < 0.02f || u < 0.05f || u > 0.95f ||
                     v < 0.04f || v > 0.96f;
    if (bar) return {fromSrgb(226, 224, 218) * 0.7f, 0.17f};
    const float leaves = cloudNoise(x * 9, y * 9, 4, seed + 21u);
    const Colour outside =
        mix(fromSrgb(214, 228, 240), fromSrgb(132, 158, 108), smoothStep(-0.25f, 0.35f, leaves + v - 0.55f));
    return {outside * 1.25f, 0.02f};
}

/// A living room: wall, window, picture, lamp, a sideboard with things on it.
Scenery roomAt(unsigned seed, float x, float y) {
    const float mirrored = chosen(seed, 3) < 0.5f ? -x : x;
    const Colour wall = hueOf(chosen(seed, 4)) * 1.15f;
    Scenery sample{wall * (0.66f + 0.5f * bell(mirrored, y, -0.3f, 0.25f, 0.5f, 0.5f) +
                           0.03f * cloudNoise(x * 40, y * 40, 3, seed)),
                   0.18f};
    if (box(mirrored, y, -0.56f, 0.06f, -0.22f, 0.48f) > 0) sample = windowAt(seed, mirrored, y, -0.56f);
    if (box(mirrored, y, 0.17f, 0.12f, 0.36f, 0.36f) > 0) {
        const bool frame = box(mirrored, y, 0.185f, 0.135f, 0.345f, 0.345f) < 0.5f;
        const float paint = cloudNoise(mirrored * 14, y * 14, 3, seed + 31u);
        sample.colour =
            frame ? fromSrgb(64, 46, 34)
                  : mix(fromSrgb(204, 186, 150), fromSrgb(88, 112, 132), smoothStep(-0.2f, 0.3f, paint));
    }
    const float lamp = bell(mirrored, y, 0.44f, 0.46f, 0.16f, 0.16f);
    sample.colour = sample.colour + Colour{0.75f, 0.48f, 0.22f} * (0.55f * lamp);
    if (std::fabs(mirrored - 0.44f) < 0.05f + 0.10f * (y - 0.42f) && y > 0.42f && y < 0.51f)
        sample = {Colour{1.3f, 0.95f, 0.58f}, 0.24f};
    if (y > 0.62f) {
        const float grain = cloudNoise(x * 6, y * 60, 3, seed + 41u);
        sample = {
            fromSrgb(108, 74, 50) * (0.75f + 0.2f * grain) * mix(1.2f, 0.6f, smoothStep(0.62f, 0.68f, y)),
            0.26f};
    } else if (y > 0.49f) {
        const int slot = static_cast<int>(std::floor(mirrored * 13));
        const std::uint32_t thing = latticeHash(slot, 9, seed);
        const float inSlot = mirrored * 13 - std::floor(mirrored * 13);
        const float tall = 0.02f + 0.09f * unitOf(thing);
        if ((thing & 3u) != 0 && std::fabs(inSlot - 0.5f) < 0.3f && y > 0.62f - tall)
            sample = {hueOf(unitOf(thing * 7u)) * mix(1.2f, 0.5f, inSlot), 0.25f};
    }
    return sample;
}

/// A street at night; its lamps are added as discs.
Scenery streetAt(unsigned seed, float x, float y) {
    Scenery sample{mix(fromSrgb(24, 30, 52), fromSrgb(74, 62, 70), smoothStep(0.0f, 0.5f, y)), 0.02f};
    const int block = static_cast<int>(std::floor(x * 5.5f));
    const std::uint32_t house = latticeHash(block, 3, seed);
    const float roof = 0.05f + 0.35f * unitOf(house);
    if (y > roof && y < 0.66f) {
        sample = {hueOf(unitOf(house * 3u)) * 0.10f, 0.08f};
        const float u = x * 5.5f - std::floor(x * 5.5f), column = u * 6, row = y * 34;
        const std::uint32_t pane =
            latticeHash(block * 64 + static_cast<int>(column), static_cast<int>(row), seed + 5u);
        const float cu = column - std::floor(column), cv = row - std::floor(row);
        if ((pane & 7u) < 3u && cu > 0.25f && cu < 0.75f && cv > 0.2f && cv < 0.75f)
            sample.colour =
                mix(Colour{0.9f, 0.55f, 0.22f}, Colour{0.6f, 0.7f, 0.8f}, unitOf(pane) > 0.7f ? 1.0f : 0.2f) *
                (0.25f + 0.6f * unitOf(pane * 5u));
    } else if (y >= 0.66f) {
        const float gleam = cloudNoise(x * 9, y * 2.5f, 3, seed + 8u);
        sample = {fromSrgb(44, 42, 48) * (0.7f + 0.8f * clamp01(gleam)) +
                      Colour{0.10f, 0.055f, 0.02f} * clamp01(1.4f * gleam),
                  mix(0.1f, 0.45f, smoothStep(0.66f, 1, y))};
    }
    return sample;
}

/// Open country: sky with clouds, trees, a meadow.
Scenery fieldAt(unsigned seed, float x, float y) {
    const float horizon = 0.50f + 0.08f * (chosen(seed, 6) - 0.5f);
    const float treeTop = horizon - 0.055f - 0.05f * cloudNoise(x * 3.1f, 2.5f, 4, seed + 11u) -
                          0.015f * cloudNoise(x * 28, 4, 3, seed + 12u);
    const float sunny = chosen(seed, 7);
    if (y < treeTop) {
        const float cloud = smoothStep(0.0f, 0.55f, cloudNoise(x * 2.1f, y * 5.2f, 5, seed + 13u) + 0.12f);
        const Colour sky = mix(fromSrgb(96, 146, 200), fromSrgb(198, 214, 226), smoothStep(0.0f, 0.5f, y));
        return {mix(sky, Colour{0.92f, 0.90f, 0.88f}, cloud * 0.85f), 0.0f};
    }
    if (y < horizon) {
        const float leaves = cloudNoise(x * 22, y * 22, 4, seed + 14u);
        return {
            mix(fromSrgb(46, 66, 40), fromSrgb(104, 122, 62), smoothStep(-0.3f, 0.5f, leaves + sunny * 0.3f)),
            0.05f};
    }
    const float near = (y - horizon) / (1.0f - horizon);
    const float blades = cloudNoise(x * 30 / (0.25f + near), y * 40 / (0.25f + near), 4, seed + 15u);
    const Colour grass = mix(fromSrgb(122, 138, 66), fromSrgb(196, 178, 98),
                             0.7f * sunny + 0.2f * cloudNoise(x * 3, y * 8, 3, seed + 16u));
    return {grass * (0.78f + 0.35f * blades), 0.06f + 0.42f * near};
}

/// Shelves full of books.
Scenery bookshelfAt(unsigned seed, float x, float y) {
    constexpr float kShelf = 0.155f, kBoard = 0.014f;
    const float row = std::floor(y / kShelf), inRow = y - row * kShelf;
    const Colour wood = mix(fromSrgb(96, 66, 44), fromSrgb(150, 112, 78), chosen(seed, 8));
    const float upright = x * 1.6f + 0.5f * chosen(seed, 9);
    if (inRow > kShelf - kBoard || std::fabs(upright - std::floor(upright) - 0.5f) < 0.018f)
        return {wood * (0.8f + 0.2f * cloudNoise(x * 30, y * 4, 3, seed)), 0.21f};
    // Books of unequal width: two neighbouring slots of a fine comb may make one book.
    int slot = static_cast<int>(std::floor(x * 34));
    const auto joined = [&](int s) { return (latticeHash(s, static_cast<int>(row) + 50, seed) & 3u) == 0; };
    float width = 1;
    if (joined(slot)) ++width;
    if (joined(slot - 1) && !joined(slot)) --slot;
    const std::uint32_t book = latticeHash(slot, static_cast<int>(row), seed + 60u);
    const float tall = 0.60f + 0.28f * unitOf(book), fromTop = inRow / (kShelf - kBoard);
    const Colour dark = wood * 0.16f;
    if (fromTop < 1 - tall || (book & 31u) == 0) return {dark, 0.17f};
    const float u = (x * 34 - static_cast<float>(slot)) / width;
    const Colour kSpines[] = {fromSrgb(124, 44, 40),  fromSrgb(44, 66, 92),    fromSrgb(176, 160, 126),
                              fromSrgb(58, 78, 60),   fromSrgb(196, 184, 164), fromSrgb(84, 58, 44),
                              fromSrgb(150, 104, 52), fromSrgb(46, 44, 48)};
    Colour spine = kSpines[book % 8] * (0.55f + 0.5f * (1 - square(2 * clamp01(u) - 1)));
    if (fromTop > 0.45f && fromTop < 0.52f) spine = spine * 1.6f;
    const float shade = mix(0.45f, 1.0f, smoothStep(1 - tall - 0.05f, 1 - tall + 0.35f, fromTop));
    return {spine * shade, 0.20f};
}

}  // namespace

Scenery sceneryAt(BackgroundKind kind, unsigned seed, float x, float y) {
    // Far outside, where only a degenerate picture looks, the lattice arithmetic must stay in range.
    x = std::min(std::max(x, -1e4f), 1e4f);
    switch (kind) {
        case BackgroundKind::plain:
            return plainAt(seed, x, y);
        case BackgroundKind::room:
            return roomAt(seed, x, y);
        case BackgroundKind::streetLights:
            return streetAt(seed, x, y);
        case BackgroundKind::field:
            return fieldAt(seed, x, y);
        case BackgroundKind::bookshelf:
            return bookshelfAt(seed, x, y);
    }
    return {};
}

}  // namespace zel::drawing
