#pragma once

#include <vector>

#include "libzel/faces/turnedSquare.h"
#include "portrait/image.h"

namespace zel {

/// A picture and its halves, to cut turned squares out of it at any size without aliasing. What is transparent
/// stands on white. The picture must outlive the object.
class ColourPyramid {
public:
    explicit ColourPyramid(const Image& image);

    int width() const { return m_levels.front().width; }
    int height() const { return m_levels.front().height; }

    /// What lies in a sound square, upright: planes of red, green and blue of `side` by `side` samples, each
    /// `gain` x byte + `offset`. Beyond the picture all is black.
    std::vector<float> cut(const TurnedSquare& square, int side, float gain, float offset) const;

private:
    struct Level {
        const unsigned char* rgba;  // straight on the first level, opaque below
        int width, height;
    };

    std::vector<std::vector<unsigned char>> m_halves;
    std::vector<Level> m_levels;
};

}  // namespace zel
