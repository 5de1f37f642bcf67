#include "zellab/imageproc/sharpen/unsharpMask.h"

#include <cstddef>

#include "zellab/imageproc/core/combinePixels.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"
#include "zellab/imageproc/sharpen/unsharpStep.h"

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
    // A radius of 0 leaves nothing to sharpen against.
    const int reach = stackBlurRadius(width, height, unsharpBlurRadius(radius));
    if (reach < 1) return true;
    const bool isPlane = rowBytes / width == 1;
    const int channels = isPlane ? 1 : 4;
    const BlurSource source{pixels,   width,    height,  std::ptrdiff_t{channels} * width,
                            channels, channels, !isPlane};
    const auto combine = isPlane ? combineRowFor<1, Sharpen>() : combineRowFor<4, Sharpen>();
    // The blur hands out its samples while the picture below them is still as it was: no copy is needed.
    stackBlur(source, reach, stackBlurWorkers(width, height),
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  Byte* own = pixels + y * source.rowBytes + first;
                  combine(own, own, blurred, static_cast<int>(count) / channels, sharpen);
              });
    return true;
}

}  // namespace zellab
