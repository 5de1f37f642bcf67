#include "pattern.h"

#include "portrait/noiseField.h"

namespace zeldepth {

using namespace zel::drawing;

namespace {

Colour fromHsv(float hue, float saturation, float value) {
    const auto channel = [&](float shift) {
        const float k = hue * 6 + shift, m = k - 6 * std::floor(k / 6);
        return value * (1 - saturation * clamp01(std::min(m, 4 - m)));
    };
    return {square(channel(5)), square(channel(3)), square(channel(1))};
}

float wave(float v) {
    return v - std::floor(v);
}

}  // namespace

Colour randomColour(RandomSource& random) {
    const float hue = random.uniform(), value = random.range(0.08f, 1);
    const float saturation = random.chance(0.35f) ? random.range(0, 0.12f) : random.range(0.1f, 0.95f);
    return fromHsv(hue, saturation, value);
}

Colour quietColour(RandomSource& random) {
    const float hue = random.uniform(), value = random.range(0.1f, 1);
    return fromHsv(random.chance(0.5f) ? 0.06f + 0.08f * hue : hue, random.range(0, 0.4f), value);
}

Pattern::Pattern(RandomSource& random)
    : m_kind(static_cast<Kind>(random.below(static_cast<int>(Kind::kinds)))),
      m_a(random.chance(0.5f) ? quietColour(random) : randomColour(random)),
      m_b(random.chance(0.4f) ? quietColour(random) : randomColour(random)),
      m_c(randomColour(random)) {
    const float quarter = 0.5f * kPi * static_cast<float>(random.below(4));
    const float angle = random.chance(0.6f) ? quarter : random.range(0, 2 * kPi);
    m_cosine = cosineOf(angle);
    m_sine = sineOf(angle);
    m_scale = exp2Of(random.range(0.5f, 5));
    m_share = random.range(0.15f, 0.85f);
    m_aspect = exp2Of(random.range(-1.5f, 1.5f));
    m_wear = random.chance(0.6f) ? random.range(0, 0.5f) : 0;
    m_seed = static_cast<std::uint32_t>(random.below(1 << 20));
    if (random.chance(0.35f)) m_b = mix(m_a, m_b, random.range(0.05f, 0.4f));
}

Pattern Pattern::plain(Colour colour) {
    Pattern pattern;
    pattern.m_a = colour;
    return pattern;
}

Pattern Pattern::cloudy(Colour a, Colour b, float size, std::uint32_t seed) {
    Pattern pattern;
    pattern.m_kind = Kind::clouds;
    pattern.m_a = a;
    pattern.m_b = b;
    pattern.m_scale = 1 / size;
    pattern.m_seed = seed;
    return pattern;
}

Pattern Pattern::windows(RandomSource& random) {
    Pattern pattern(random);
    pattern.m_kind = Kind::panes;
    pattern.m_a = quietColour(random);
    pattern.m_cosine = 1;
    pattern.m_sine = 0;
    pattern.m_scale = random.range(0.25f, 0.6f);
    return pattern;
}

Colour Pattern::at(float u, float v) const {
    const float x = (u * m_cosine - v * m_sine) * m_scale, y = (u * m_sine + v * m_cosine) * m_scale;
    const float column = std::floor(x), row = std::floor(y * m_aspect);
    const float inX = x - column, inY = y * m_aspect - row;
    const auto hashed = [&](float i, float j) {
        return latticeHash(static_cast<int>(i), static_cast<int>(j), m_seed);
    };
    Colour colour = m_a;
    switch (m_kind) {
        case Kind::stripes:
            if (inX < m_share) colour = m_b;
            break;
        case Kind::checks:
            colour = mix(m_a, m_b, (inX < m_share ? 0.5f : 0.0f) + (inY < m_share ? 0.5f : 0.0f));
            break;
        case Kind::dots:
            if (square(inX - 0.5f) + square(inY - 0.5f) < 0.2f * m_share) colour = m_b;
            break;
        case Kind::clouds:
            colour = mix(m_a, m_b, smoothStep(-0.5f, 0.5f, cloudNoise(x, y, 4, m_seed)));
            break;
        case Kind::cells:
            colour = mix(m_a, m_b, clamp01(cellNoise(x, y, m_seed)));
            break;
        case Kind::bricks: {
            const float shifted = wave(x * 0.5f + (static_cast<int>(row) % 2 != 0 ? 0.5f : 0.0f));
            const float brick = std::floor(x * 0.5f + (static_cast<int>(row) % 2 != 0 ? 0.5f : 0.0f));
            colour = shifted < 0.06f || inY < 0.12f ? m_b : m_a * (0.75f + 0.4f * unitOf(hashed(brick, row)));
            break;
        }
        case Kind::blocks: {
            const std::uint32_t h = hashed(column, row);
            const float pick = unitOf(h);
            colour = pick < 0.4f ? m_a : pick < 0.7f ? m_b : m_c * (0.3f + unitOf(h * 7u));
            break;
        }
        case Kind::ramp:
            colour = mix(m_a, m_b, 0.5f + 0.5f * sineOf(0.2f * x + static_cast<float>(m_seed % 7u)));
            break;
        case Kind::panes: {
            const bool pane = inX > 0.25f && inX < 0.75f && inY > 0.2f && inY < 0.8f;
            if (pane) colour = unitOf(hashed(column, row)) < 0.2f * m_share ? m_c * 1.5f : m_b * 0.3f;
            break;
        }
        case Kind::lines:
            if (inY < 0.5f && unitOf(hashed(std::floor(x * 3), row)) < m_share) colour = m_b;
            break;
        default:
            break;
    }
    if (m_wear > 0) colour = colour * (1 + m_wear * cloudNoise(u * 5, v * 5, 3, m_seed + 9u));
    return {std::max(colour.x, 0.0f), std::max(colour.y, 0.0f), std::max(colour.z, 0.0f)};
}

}  // namespace zeldepth
