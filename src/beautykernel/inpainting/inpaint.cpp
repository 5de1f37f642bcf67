#include "beautykernel/inpainting/gradientInpainter.h"
#include "beautykernel/inpainting/patchFillInpainter.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

void TableSkin::ImageProcessWithInpaint(unsigned char* image, int width, int height, unsigned char* mask,
                                        int method) {
    constexpr int kFullStrength = 100;  // percent
    constexpr int kRadius = 20, kFirstTries = 16, kTries = 100, kPasses = 20;
    if (method == 1) {
        zellab::GradientInpainter().Run(image, mask, width, height, kFullStrength);
    } else {
        zellab::PatchFillInpainter::instance().Run(image, width, height, kRadius, mask, kFirstTries, kTries,
                                                   kPasses);
    }
}

}  // namespace ZelImageCore
