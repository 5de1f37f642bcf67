#include "beautykernel/facebeauty/curveLift.h"

#include "beautykernel/skintools/shadowPlane.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/tone/sfCurve.h"

namespace zellab {

CurveLift largeLift(int brightness) {
    constexpr int kHalf = 127;
    if (brightness < 61) return {156, kHalf};
    if (brightness < 101) return {148, kHalf};
    if (brightness < 121) return {146, kHalf};
    if (brightness < 141) return {144, kHalf};
    return {brightness <= 170 ? 142 : 140, kHalf};
}

CurveLift smallLift(int brightness) {
    return {shadowLiftTarget(brightness), 0};
}

void liftShadows(ImageView image, PlaneView<const Byte> shadow, const CurveLift& lift) {
    ByteTable curve;
    ApplyCurveThreePoints(curve, 128, lift.target);
    mapByPlane(
        image, shadow, weightTables([&](int weight, int c) {
            return clampToByte(c + ((curve[static_cast<std::size_t>(c)] - c) * weight + lift.rounding) / 255);
        }));
}

}  // namespace zellab
