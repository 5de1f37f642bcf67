#pragma once

#include <cstdint>
#include <span>

#include "frame/zel_records.h"

namespace zeltest {

/// How many triangles of a mesh hold a point strictly inside.
inline int coverage(zellab::Vector2f p, const zellab::Vector2f* mesh,
                    std::span<const std::uint16_t> triangles) {
    int count = 0;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
        int sides = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const zellab::Vector2f a = mesh[triangles[i + k]], b = mesh[triangles[i + (k + 1) % 3]];
            const double side = (static_cast<double>(b.x) - a.x) * (static_cast<double>(p.y) - a.y) -
                                (static_cast<double>(b.y) - a.y) * (static_cast<double>(p.x) - a.x);
            sides += side > 1e-3 ? 1 : side < -1e-3 ? -1 : 0;
        }
        count += sides == 3 || sides == -3;
    }
    return count;
}

}  // namespace zeltest
