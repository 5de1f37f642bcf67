#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <span>

#include "support/randomImage.h"
#include "zel_effects/zel_records.h"

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

/// Expects that no triangles of a mesh overlap, on a picture of that size.
inline void expectNoOverlap(int width, int height, const zellab::Vector2f* mesh,
                            std::span<const std::uint16_t> triangles) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const zellab::Vector2f p{static_cast<float>(x) + 0.37f, static_cast<float>(y) + 0.41f};
            EXPECT_LE(coverage(p, mesh, triangles), 1) << x << ',' << y;
        }
}

/// Expects that every pixel that differs between two pictures of `width` pixels across lies on the mesh: its
/// own centre or a point of one on an edge. @return how many differ
inline std::size_t changesOnTheMesh(const Bytes& before, const Bytes& after, int width,
                                    const zellab::Vector2f* mesh, std::span<const std::uint16_t> triangles) {
    std::size_t changed = 0;
    for (std::size_t at = 0; at < before.size(); at += 4) {
        if (std::equal(&after[at], &after[at] + 4, &before[at])) continue;
        ++changed;
        const int x = static_cast<int>(at / 4) % width, y = static_cast<int>(at / 4) / width;
        int cover = 0;
        for (float dx : {-0.6f, 0.0f, 0.6f})
            for (float dy : {-0.6f, 0.0f, 0.6f})
                cover += coverage({static_cast<float>(x) + dx, static_cast<float>(y) + dy}, mesh, triangles);
        EXPECT_GT(cover, 0) << x << ',' << y;
    }
    return changed;
}

}  // namespace zeltest
