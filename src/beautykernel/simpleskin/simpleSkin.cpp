// The exported simple skin operations.
#include "beautykernel/simpleskin/highPassBrighten.h"
#include "beautykernel/simpleskin/natureSmooth.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

bool TableSkin::ImageProcessWithBright(unsigned char* image, int width, int height, int radius, int level) {
    if (!image || width < 1 || height < 1) return false;
    zellab::HighPassBrighten({image, width, height}, radius, level);
    return true;
}

void TableSkin::ImageProcessWithMascara(unsigned char* image, int width, int height, int radius, int level) {
    zellab::HighPassBrighten({image, width, height}, radius, level);
}

void TableSkin::ImageProcessWithNatureSmooth(unsigned char* image, int width, int height, int radius) {
    zellab::natureSmooth({image, width, height}, radius);
}

}  // namespace ZelImageCore
