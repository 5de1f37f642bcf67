// The exported blur: named after the curve that it looks like, and a stack blur all the same.
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlur.h"

namespace ZelImageCore {

void TableBase::ImageProcessWithGaussBlur(unsigned char* image, int width, int height, int radius) {
    zellab::StackBlurRGBA({image, width, height}, radius);
}

}  // namespace ZelImageCore
