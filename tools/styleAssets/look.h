#pragma once

#include <array>
#include <vector>

namespace zelassets {

/// A gentle portrait look. Every value of 0 leaves its aspect alone; all work on display-coded colours.
struct Look {
    float lift;        // of the mid tones, as a share of the range; black and white stay
    float contrast;    // 0 straight, 1 a full S between black and white
    float warmth;      // red up and blue down in the mid tones, as a share of the range
    float rose;        // green down in the mid tones, which takes the yellow out of skin
    float saturation;  // change of the distance from grey, as a factor less 1
    float matte;       // black is raised by this share of the range
    float guard = 0;   // 1 keeps the contrast off the ends of the range: no shadow drowns, no light bleaches
};

/// Red, green, blue in 0..1.
using Colour = std::array<float, 3>;

/// One colour through the look.
Colour graded(Colour colour, const Look& look);

/// The look as a colour lookup: 64 by 64 RGBA texels, 4 by 4 tiles of 16 by 16. Red runs along x within a
/// tile, green along y, blue from tile to tile.
std::vector<unsigned char> lookCube(const Look& look);

}  // namespace zelassets
