#pragma once

#include <cstddef>

#include "support/drawnFace.h"

namespace zelfuzz {

/// Something that effects find eyes and skin in, of that size: one drawing, taken nearest, since drawing takes longer
/// than most effects do.
inline zeltest::Bytes faceOf(int width, int height) {
    constexpr int kSide = 64;
    static const zeltest::Bytes drawn = zeltest::drawnFace(kSide, kSide);
    zeltest::Bytes bytes;
    bytes.reserve(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto at = drawn.begin() + 4 * (y * kSide / height * kSide + x * kSide / width);
            bytes.insert(bytes.end(), at, at + 4);
        }
    return bytes;
}

}  // namespace zelfuzz
