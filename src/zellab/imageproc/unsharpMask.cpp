#include "zellab/imageproc/unsharpMask.h"

#include <cstdlib>
#include <vector>

#include "zellab/imageproc/combinePixels.h"
#include "zellab/imageproc/pixelMath.h"
#include "zellab/imageproc/stackBlur.h"

namespace zellab {

namespace {

constexpr int kMostAmount = 500;
constexpr float kLeastRadius = 0.1f, kMostRadius = 1000.0f, kBlurRadiusFactor = 2.25f;

struct Sharpen {
    float amount;  // 1: the whole difference; single precision
    int threshold;
    [[gnu::always_inline]] Byte operator()(int in, int blurred) const {
        const int raw = static_cast<int>(static_cast<float>(in - blurred) * amount);
        const int size = std::max(std::abs(raw) - threshold, 0);
        return clampToByte(in + (raw < 0 ? -size : size));
    }
};

/// 2.25 times the limited radius, in pixels. A radius that is NaN counts as the least.
int blurRadius(float radius) {
    const float limited = radius >= kMostRadius ? kMostRadius : radius > kLeastRadius ? radius : kLeastRadius;
    return static_cast<int>(limited * kBlurRadiusFactor);
}

}  // namespace

bool UnsharpMask(unsigned char* pixels, int width, int height, int rowBytes, int amount, float radius,
                 unsigned char threshold, int /*reserved*/) {
    if (!pixels || width < 1 || height < 1) return false;
    const int percent = amount > kMostAmount ? kMostAmount : amount < 2 ? 1 : amount;
    const Sharpen sharpen{static_cast<float>(percent) / 100.0f, threshold};
    const bool isPlane = rowBytes / width == 1;
    std::vector<Byte> blurred(pixels, pixels + sampleCount(width, height, isPlane ? 1 : 4));
    if (isPlane) {
        StackBlurGray(blurred.data(), width, height, blurRadius(radius));
        const PlaneView<Byte> plane(pixels, width, height);
        combinePlanes(plane, plane, {blurred.data(), width, height}, sharpen);
    } else {
        StackBlurRGBA(blurred.data(), width, height, blurRadius(radius));
        const ImageView image(pixels, width, height);
        combinePixels(image, image, {blurred.data(), width, height}, sharpen);
    }
    return true;
}

}  // namespace zellab
