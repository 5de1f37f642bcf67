#pragma once

#include <cmath>

#include "zellab/geometry/vector2.h"

namespace zel {

/// A turned square of a picture, in its pixels. At a turn of 0 it stands upright; turns count in radians,
/// clockwise as seen.
struct TurnedSquare {
    zellab::Vector2f centre;
    float side = 0, turn = 0;

    /// The vector in the picture of one in the square's frame, where 1 is a side.
    zellab::Vector2f direction(zellab::Vector2f share) const {
        const float c = std::cos(turn) * side, s = std::sin(turn) * side;
        return {c * share.x - s * share.y, s * share.x + c * share.y};
    }

    /// The place in the picture of one in the square: 0,0 is its top left corner, 1,1 the opposite one.
    zellab::Vector2f at(zellab::Vector2f share) const {
        return centre + direction({share.x - 0.5f, share.y - 0.5f});
    }

    /// Whether it is one that can be looked at: a network that is damaged may tell of anything.
    bool sound() const {
        constexpr float kMost = 1e6f;
        return side >= 1 && side < kMost && std::abs(centre.x) < kMost && std::abs(centre.y) < kMost &&
               std::isfinite(turn);
    }
};

}  // namespace zel
