// TableBase::ImageProcessWithColorMixing: brightness and contrast, saturation, logarithmic lift.
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/colour/colorAdjust.h"
#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/tone/psContrastBrightness.h"

namespace ZelImageCore {

void TableBase::ImageProcessWithColorMixing(unsigned char* image, int width, int height, float* params,
                                            int count) {
    constexpr int kWithoutLift = 3, kWithLift = 4;
    if (!image || !params || count < kWithoutLift) return;
    if (params[0] != 0.0f || params[1] != 0.0f)
        zellab::PSContrastBrightness().Run({image, width, height}, params[0], params[1]);
    if (params[2] != 0.0f) zellab::SaturationAdjust({image, width, height}, zellab::truncateToInt(params[2]));
    // Only exactly four values carry a lift; a longer block does not.
    if (count == kWithLift && params[3] != 0.0f)
        zellab::LogBrightnessAdjust({image, width, height}, zellab::truncateToInt(params[3]));
}

}  // namespace ZelImageCore
