#pragma once

#include <vector>

#include "libzel/faces/turnedSquare.h"
#include "zellab/imageproc/core/imageView.h"

namespace zel {

/// A picture and its halves, to cut turned squares out of it at any size without aliasing. What is transparent
/// stands on white. The picture's pixels must outlive the object.
class ColourPyramid {
public:
    explicit ColourPyramid(zellab::ConstImageView picture);

    int width() const { return m_levels.front().width; }
    int height() const { return m_levels.front().height; }

    /// What lies in a sound square, upright: planes of red, green and blue of `side` by `side` samples, each
    /// `gain` x byte + `offset`. Beyond the picture all is black.
    std::vector<float> cut(const TurnedSquare& square, int side, float gain, float offset) const;

private:
    std::vector<std::vector<unsigned char>> m_halves;
    std::vector<zellab::ConstImageView> m_levels;  // straight on the first one, opaque below
};

}  // namespace zel
