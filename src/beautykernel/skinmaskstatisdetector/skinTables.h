#pragma once

#include <array>

#include "zellab/imageproc/core/imageView.h"

namespace zelbeauty {

/// Opens the blurred chroma box: measured values, without a formula.
inline constexpr std::array<unsigned char, 256> kSkinBoxCurve = {
    0,   3,   6,   9,   12,  15,  17,  20,  23,  26,  29,  32,  33,  36,  39,  42,  44,  47,  50,  53,
    54,  57,  59,  62,  65,  67,  69,  71,  74,  76,  78,  80,  83,  85,  86,  89,  91,  94,  95,  98,
    100, 101, 104, 106, 107, 110, 112, 113, 115, 118, 119, 121, 122, 125, 127, 128, 130, 131, 133, 135,
    137, 138, 140, 141, 143, 144, 146, 147, 149, 150, 153, 154, 156, 157, 159, 160, 161, 163, 164, 166,
    167, 167, 169, 170, 171, 173, 174, 175, 177, 178, 179, 181, 182, 182, 183, 185, 186, 187, 188, 190,
    190, 191, 192, 193, 195, 196, 196, 197, 198, 199, 201, 201, 202, 203, 204, 205, 205, 206, 207, 208,
    209, 210, 211, 212, 212, 213, 214, 215, 215, 216, 217, 218, 218, 219, 220, 221, 221, 221, 222, 223,
    223, 224, 225, 226, 226, 227, 227, 228, 228, 229, 230, 230, 230, 231, 232, 232, 233, 233, 234, 234,
    235, 235, 235, 236, 237, 237, 237, 238, 238, 239, 239, 239, 240, 240, 240, 241, 242, 242, 242, 242,
    243, 243, 243, 244, 244, 245, 245, 245, 245, 246, 246, 246, 246, 247, 247, 247, 247, 248, 248, 248,
    248, 249, 249, 249, 250, 250, 250, 250, 250, 251, 251, 251, 251, 251, 251, 252, 252, 252, 252, 252,
    252, 252, 253, 253, 253, 253, 253, 253, 253, 253, 254, 254, 254, 254, 254, 254, 254, 254, 254, 254,
    254, 254, 254, 254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};

inline constexpr int kChromaRows = 73;     // over Cr, from 35 below the centre
inline constexpr int kChromaColumns = 62;  // over Cb, from 25 below the centre

/// Weights of a chroma offset, 255 inside a slanted blob and 0 outside it. Rows run over Cr, columns over Cb.
using ChromaTable = std::array<std::array<unsigned char, kChromaColumns>, kChromaRows>;

/// The blob around the skin colour of the picture.
const ChromaTable& skinChromaTable();

/// The same leaning towards smaller Cb.
const ChromaTable& skinChromaTableAlt();

}  // namespace zelbeauty
