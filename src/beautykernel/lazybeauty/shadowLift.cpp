#include "beautykernel/lazybeauty/shadowLift.h"

#include <algorithm>

#include "zellab/imageproc/tone/sfCurve.h"

namespace zellab {

WeightTables shadowLiftTables(const MeanColour& skin, int smoothLevel) {
    ByteTable curve;
    ApplyCurveThreePoints(curve, 128, shadowLiftTarget(skin.brightness()));
    const float share = static_cast<float>(std::clamp(smoothLevel, 0, 7)) / 7.0f;
    return weightTables([&](int weight, int c) {
        const int lifted = curve[static_cast<std::size_t>(c)] * weight + c * (255 - weight);
        return static_cast<Byte>(static_cast<float>(lifted) * share / 255.0f +
                                 static_cast<float>(c) * (1.0f - share));
    });
}

}  // namespace zellab
