#include "zellab/imageproc/sharpen/unsharpMask.h"

#include <cstddef>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"
#include "zellab/imageproc/core/combinePixels.h"
#include "zellab/imageproc/sharpen/unsharpStep.h"

namespace zellab {

namespace {

constexpr float kLeastRadius = 0.1f, kMostRadius = 1000.0f, kBlurRadiusFactor = 2.25f;

/// @param source  what the blur reads; its samples, a byte each, are those that are sharpened
template <int kChannels>
void sharpen(const BlurSource& source, Byte* pixels, int amount, float radius, Byte threshold) {
    const Sharpen step(amount, threshold);
    // A radius of 0 leaves nothing to sharpen against.
    const int reach = stackBlurRadius(source.width, source.height, unsharpBlurRadius(radius));
    if (reach < 1) return;
    const auto combine = combineRowFor<kChannels, Sharpen>();
    // The blur hands out its samples while the picture below them is still as it was: no copy is needed.
    stackBlur(source, reach, stackBlurWorkers(source.width, source.height),
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  Byte* own = pixels + y * source.rowBytes + first;
                  combine(own, own, blurred, static_cast<int>(count) / kChannels, step);
              });
}

}  // namespace

int unsharpBlurRadius(float radius) {
    const float limited = radius >= kMostRadius ? kMostRadius : radius > kLeastRadius ? radius : kLeastRadius;
    return static_cast<int>(limited * kBlurRadiusFactor);
}

bool UnsharpMask(ImageView image, int amount, float radius, Byte threshold) {
    if (!image.valid()) return false;
    constexpr int kChannels = ImageView::kChannels;
    sharpen<kChannels>({image.data, image.width, image.height, image.stride, kChannels, kChannels, true},
                       image.data, amount, radius, threshold);
    return true;
}

bool UnsharpMask(PlaneView<Byte> plane, int amount, float radius, Byte threshold) {
    if (!plane.valid()) return false;
    sharpen<1>({plane.data, plane.width, plane.height, plane.stride, 1, 1, false}, plane.data, amount, radius,
               threshold);
    return true;
}

}  // namespace zellab
