#include "beautykernel/lazybeauty/shadowLift.h"

#include <algorithm>

#include "zellab/imageproc/sfCurve.h"

namespace zellab {

namespace {

/// Brightness to which the middle of the curve is raised, by the brightness of the skin.
int liftTarget(int brightness) {
    if (brightness < 61) return 156;
    if (brightness < 101) return 152;
    if (brightness <= 140) return 150;
    return brightness <= 200 ? 148 : 145;
}

}  // namespace

ShadowLift::ShadowLift(const MeanColour& skin, int smoothLevel) : m_lifted(256 * 256) {
    Byte curve[256];
    ApplyCurveThreePoints(curve, 128, liftTarget(skin.brightness()));
    const float share = static_cast<float>(std::clamp(smoothLevel, 0, 7)) / 7.0f;
    for (int s = 0; s < 256; ++s)
        for (int c = 0; c < 256; ++c)
            m_lifted[static_cast<std::size_t>(s * 256 + c)] =
                static_cast<Byte>(static_cast<float>(curve[c] * s + c * (255 - s)) * share / 255.0f +
                                  static_cast<float>(c) * (1.0f - share));
}

void ShadowLift::row(Byte* pixels, const Byte* weight, int width) const {
    for (int x = 0; x < width; ++x, pixels += 4) {
        const Byte* table = m_lifted.data() + 256 * static_cast<std::size_t>(weight[x]);
        for (int c = 0; c < 3; ++c) pixels[c] = table[pixels[c]];
    }
}

}  // namespace zellab
