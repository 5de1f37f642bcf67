#pragma once

#include <vector>

#include "portrait/image.h"

namespace zel {

/// The picture's luma, one byte a pixel, on white where it is transparent.
std::vector<unsigned char> lumaOf(const Image& image);

/// A grey picture and its halves, to read it at any scale without aliasing.
class LumaPyramid {
public:
    LumaPyramid(const std::vector<unsigned char>& luma, int width, int height);

    int width() const { return m_levels.front().width; }
    int height() const { return m_levels.front().height; }

    /// The level to read where one sample steps by `pixels` of the full picture.
    int levelFor(float pixels) const;
    /// The value at a place of the full picture, between the samples of that level; beyond the edge the edge
    /// goes on.
    float at(int level, float x, float y) const;

private:
    struct Level {
        int width = 0, height = 0;
        float scale = 1;  // pixels of the full picture per sample
        std::vector<float> values;
    };
    static Level halved(const Level& level);
    std::vector<Level> m_levels;
};

}  // namespace zel
