#include "beautykernel/lazybeauty/shadowLift.h"

#include <algorithm>

#include "beautykernel/skintools/shadowPlane.h"
#include "zellab/imageproc/tone/sfCurve.h"

namespace zellab {

std::vector<Byte> shadowLiftTable(const MeanColour& skin, int smoothLevel) {
    ByteTable curve;
    ApplyCurveThreePoints(curve, 128, shadowLiftTarget(skin.brightness()));
    const float share = static_cast<float>(std::clamp(smoothLevel, 0, 7)) / 7.0f;
    std::vector<Byte> lifted;
    lifted.reserve(256 * 256);
    for (int s = 0; s < 256; ++s)
        for (int c = 0; c < 256; ++c)
            lifted.push_back(
                static_cast<Byte>(static_cast<float>(curve[c] * s + c * (255 - s)) * share / 255.0f +
                                  static_cast<float>(c) * (1.0f - share)));
    return lifted;
}

}  // namespace zellab
