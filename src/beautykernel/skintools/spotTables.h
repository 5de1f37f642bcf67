#pragma once

#include <array>

/// Fixed tables of the spot repair: measured values of this system, without a formula.

namespace zellab {

/// Lifts mid greys and flattens shadows, so that a spot on dark skin stands out like one on light skin.
inline constexpr std::array<unsigned char, 256> kSpotToneCurve = {
    0,   0,   0,   0,   0,   0,   0,   1,   1,   1,   1,   1,   1,   1,   1,   2,   2,   2,   2,   2,
    2,   3,   3,   3,   3,   4,   4,   4,   5,   5,   5,   6,   6,   7,   7,   8,   8,   9,   9,   10,
    11,  11,  12,  13,  14,  14,  15,  16,  17,  18,  19,  20,  21,  22,  23,  24,  25,  27,  28,  29,
    31,  32,  33,  35,  36,  38,  40,  41,  43,  45,  46,  48,  50,  52,  54,  55,  57,  59,  61,  63,
    65,  67,  69,  71,  73,  75,  77,  79,  80,  82,  84,  86,  88,  90,  92,  94,  96,  97,  99,  101,
    103, 105, 106, 108, 110, 111, 113, 115, 116, 118, 120, 121, 123, 125, 126, 128, 129, 131, 132, 134,
    135, 137, 138, 140, 141, 143, 144, 145, 147, 148, 149, 151, 152, 153, 155, 156, 157, 159, 160, 161,
    162, 164, 165, 166, 167, 168, 170, 171, 172, 173, 174, 175, 176, 178, 179, 180, 181, 182, 183, 184,
    185, 186, 187, 188, 189, 190, 191, 192, 193, 194, 195, 196, 197, 198, 199, 200, 200, 201, 202, 203,
    204, 205, 206, 207, 207, 208, 209, 210, 211, 211, 212, 213, 214, 215, 215, 216, 217, 218, 218, 219,
    220, 221, 221, 222, 223, 224, 224, 225, 226, 226, 227, 228, 228, 229, 230, 230, 231, 232, 232, 233,
    234, 234, 235, 236, 236, 237, 238, 238, 239, 239, 240, 241, 241, 242, 242, 243, 244, 244, 245, 246,
    246, 247, 247, 248, 249, 249, 250, 250, 251, 251, 252, 253, 253, 254, 254, 255};

/// Right sides of the repair: a faint texture. The first index runs along the columns of the picture, the
/// second along its rows. Radius 1 serves all channels.
inline constexpr int kSpotTexture1[3][3] = {{4, 1, 0}, {1, 0, 1}, {0, 0, -1}};

/// Radius 2: the channels differ in their last row alone.
inline constexpr int kSpotTexture2[5][5] = {
    {4, 1, 0, -2, 1}, {1, 0, 1, -2, 1}, {0, 0, -1, -1, 1}, {3, -1, 0, -2, 1}, {2, 4, 6, -3, -1}};
inline constexpr int kSpotTexture2LastRow[3][5] = {{1, 1, 1, 1, -1}, {3, 3, 4, 4, 2}, {2, 2, 5, 5, 3}};

/// Radius 0: one cell.
inline constexpr int kSpotTexture0 = 4;

}  // namespace zellab
