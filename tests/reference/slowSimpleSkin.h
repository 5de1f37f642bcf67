#pragma once

#include "beautykernel/simpleskin/natureTable.h"
#include "reference/slowTone.h"

/// The skin operations that know no face. The tone that dark places are moved to is the library's own table.

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
            rgba[c] = static_cast<unsigned char>(zellab::NatureTable[rgba[c]] * (1.0f - m) + rgba[c] * m);
    }
}

}  // namespace slow
