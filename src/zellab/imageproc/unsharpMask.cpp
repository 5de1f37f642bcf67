#include "zellab/imageproc/unsharpMask.h"

#include <vector>

#include "zellab/imageproc/combinePixels.h"
#include "zellab/imageproc/stackBlur.h"
#include "zellab/imageproc/unsharpStep.h"

namespace zellab {

namespace {

constexpr float kLeastRadius = 0.1f, kMostRadius = 1000.0f, kBlurRadiusFactor = 2.25f;

}  // namespace

int unsharpBlurRadius(float radius) {
    const float limited = radius >= kMostRadius ? kMostRadius : radius > kLeastRadius ? radius : kLeastRadius;
    return static_cast<int>(limited * kBlurRadiusFactor);
}

bool UnsharpMask(unsigned char* pixels, int width, int height, int rowBytes, int amount, float radius,
                 unsigned char threshold, int /*reserved*/) {
    if (!pixels || width < 1 || height < 1) return false;
    const Sharpen sharpen(amount, threshold);
    const bool isPlane = rowBytes / width == 1;
    std::vector<Byte> blurred(pixels, pixels + sampleCount(width, height, isPlane ? 1 : 4));
    if (isPlane) {
        StackBlurGray(blurred.data(), width, height, unsharpBlurRadius(radius));
        const PlaneView<Byte> plane(pixels, width, height);
        combinePlanes(plane, plane, {blurred.data(), width, height}, sharpen);
    } else {
        StackBlurRGBA(blurred.data(), width, height, unsharpBlurRadius(radius));
        const ImageView image(pixels, width, height);
        combinePixels(image, image, {blurred.data(), width, height}, sharpen);
    }
    return true;
}

}  // namespace zellab
