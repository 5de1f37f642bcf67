#include "beautykernel/inpainting/gradientInpainter.h"
#include "beautykernel/inpainting/patchFillInpainter.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

void TableSkin::ImageProcessWithInpaint(unsigned char* image, int width, int height, unsigned char* mask,
                                        int method) {
    constexpr int kFullStrength = 100;  // percent
    constexpr int kGradientMethod = 1;
    const zellab::ImageView picture(image, width, height);
    const zellab::PlaneView<const zellab::Byte> hole(mask, width, height);
    if (method == kGradientMethod) {
        zellab::GradientInpainter().Run(picture, hole, kFullStrength);
    } else {
        zellab::PatchFillInpainter::instance().Run(picture, hole, {});
    }
}

}  // namespace ZelImageCore
