#pragma once

#include <cstdint>

#include "portrait/portraitMath.h"
#include "portrait/randomSource.h"

/// Scenes with true depth that the depth network learns from: people and places of many kinds.

namespace zeldepth {

using zel::drawing::Colour;
using zel::drawing::RandomSource;
using zel::drawing::Vec2;
using zel::drawing::Vec3;

/// Any colour, grey ones included, as linear light.
Colour randomColour(RandomSource& random);
/// Whites, greys, browns and muted hues: what walls and clothes mostly have.
Colour quietColour(RandomSource& random);

/// What a flat surface shows: a random kind of pattern in random colours.
class Pattern {
public:
    Pattern() = default;
    explicit Pattern(RandomSource& random);

    static Pattern plain(Colour colour);
    /// Two colours in cloudy patches of about `size` units: grass, leaves, plaster.
    static Pattern cloudy(Colour a, Colour b, float size, std::uint32_t seed);
    /// Panes in a wall, some of them lit.
    static Pattern windows(RandomSource& random);

    Colour at(float u, float v) const;

private:
    enum class Kind {
        plain,
        stripes,
        checks,
        dots,
        clouds,
        cells,
        bricks,
        blocks,
        ramp,
        panes,
        lines,
        kinds
    };

    Kind m_kind = Kind::plain;
    Colour m_a{0.5f, 0.5f, 0.5f}, m_b, m_c;
    float m_cosine = 1, m_sine = 0, m_scale = 1, m_share = 0.5f, m_aspect = 1, m_wear = 0;
    std::uint32_t m_seed = 1;
};

}  // namespace zeldepth
