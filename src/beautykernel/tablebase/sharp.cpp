// TableBase::ImageProcessWithSharp: unsharp mask against the caller's blurred copy.
#include <cmath>

#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/sharpen/unsharpMaskKernel.h"

namespace ZelImageCore {

void TableBase::ImageProcessWithSharp(unsigned char* image, int width, int height, float amount,
                                      unsigned char** blurred) {
    constexpr float kSigma = 1.1f, kPositiveGain = 4.0f;
    if (!image || width < 1 || height < 1) return;
    // Without the caller's copy this operation has always ended in an access fault, so hosts pass one. Here
    // the picture stays as it is.
    if (!blurred || !*blurred) return;
    const float gain = amount > 0.0f ? amount * kPositiveGain : amount;
    if (!std::isfinite(gain)) return;
    zellab::UnsharpMaskKernel(kSigma, gain).Run({image, width, height}, {*blurred, width, height});
}

}  // namespace ZelImageCore
