#include "beautykernel/simpleskin/natureSmooth.h"

#include <algorithm>

#include "beautykernel/simpleskin/natureMix.h"
#include "beautykernel/simpleskin/natureTable.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

/// Pixels that are toned at a time, before they are mixed.
constexpr int kRun = 64;

void smoothRun(Byte* pixels, const Byte* blurredGreen, int count, NatureMix mix) {
    Byte toned[4 * kRun];
    for (int i = 0; i < 4 * count; ++i) toned[i] = NatureTable[pixels[i]];
    mix(pixels, toned, blurredGreen, count);
}

}  // namespace

void natureSmooth(ImageView image, int radius) {
    if (!image.valid()) return;
    // Of the blurred picture only green is looked at.
    const BlurSource green{image.data + 1, image.width, image.height, image.stride, 4, 1, false};
    const int limited = std::max(stackBlurRadius(image.width, image.height, radius), 0);
    const NatureMix mix = natureMix(platform::simdLevel());
    stackBlur(green, limited, stackBlurWorkers(image.width, image.height),
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  for (std::ptrdiff_t i = 0; i < count; i += kRun)
                      smoothRun(image.row(y) + 4 * (first + i), blurred + i,
                                static_cast<int>(std::min<std::ptrdiff_t>(kRun, count - i)), mix);
              });
}

}  // namespace zellab
