#pragma once

#include "reference/slowTone.h"

/// The skin operations that know no face.

namespace slow {

inline void highPassBrighten(Bytes& rgba, int width, int height, int radius, int level) {
    const Bytes original = rgba;
    stackBlurEx(rgba, width, height, width * 4, radius);
    const float k = std::clamp(level, 0, 10) * 0.1f;
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        if (i % 4 == 3) continue;
        const int o = original[i], h = std::clamp(o - rgba[i] + 128, 0, 255);
        int v = o;
        if (h < 128) v = h == 0 ? 0 : std::max((o - 255) * 256 / (2 * h) + 255, 0);
        rgba[i] = static_cast<unsigned char>(o * (1.0f - k) + v * k);
    }
}

/// The tone that dark places are moved to.
inline constexpr unsigned char kNatureTable[256] = {
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   1,   3,   4,   5,   7,   8,   9,   11,  12,
    13,  15,  16,  17,  19,  20,  21,  23,  24,  25,  27,  28,  29,  31,  32,  33,  34,  36,  37,  38,
    40,  41,  42,  44,  45,  46,  48,  49,  50,  51,  53,  54,  55,  57,  58,  59,  61,  62,  63,  64,
    66,  67,  68,  70,  71,  72,  73,  75,  76,  77,  78,  80,  81,  82,  83,  85,  86,  87,  88,  90,
    91,  92,  93,  95,  96,  97,  98,  99,  101, 102, 103, 104, 105, 107, 108, 109, 110, 111, 113, 114,
    115, 116, 117, 118, 120, 121, 122, 123, 124, 125, 126, 128, 129, 130, 131, 132, 133, 134, 135, 136,
    137, 139, 140, 141, 142, 143, 144, 145, 146, 147, 148, 149, 150, 151, 152, 153, 154, 155, 156, 157,
    158, 159, 160, 161, 162, 163, 164, 165, 166, 167, 168, 169, 170, 171, 172, 173, 174, 175, 176, 177,
    178, 179, 179, 180, 181, 182, 183, 184, 185, 186, 187, 188, 188, 189, 190, 191, 192, 193, 194, 195,
    195, 196, 197, 198, 199, 200, 201, 201, 202, 203, 204, 205, 206, 206, 207, 208, 209, 210, 211, 211,
    212, 213, 214, 215, 215, 216, 217, 218, 219, 219, 220, 221, 222, 223, 223, 224, 225, 226, 227, 227,
    228, 229, 230, 230, 231, 232, 233, 234, 234, 235, 236, 237, 237, 238, 239, 240, 241, 241, 242, 243,
    244, 244, 245, 246, 247, 247, 248, 249, 250, 250, 251, 252, 253, 253, 254, 255};

inline void natureSmooth(Bytes& rgba, int width, int height, int radius) {
    Bytes blurred = rgba;
    stackBlurEx(blurred, width, height, width * 4, radius);
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const float g = rgba[i + 1] * 0.0039215f, gb = blurred[i + 1] * 0.0039215f;
        const float t = std::clamp(2.0f * (1.0f - gb) + g - 1.0f, 0.0f, 1.0f);
        float m = (t + g) * 0.5f;
        for (int round = 0; round < 3; ++round)
            m = m <= 0.5f ? 2.0f * (m * m) : 1.0f - 2.0f * ((1.0f - m) * (1.0f - m));
        for (std::size_t c = i; c < i + 3; ++c)
            rgba[c] = static_cast<unsigned char>(kNatureTable[rgba[c]] * (1.0f - m) + rgba[c] * m);
    }
}

}  // namespace slow
