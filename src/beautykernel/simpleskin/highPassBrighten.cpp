#include "beautykernel/simpleskin/highPassBrighten.h"

#include <algorithm>
#include <array>
#include <memory>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int kHighPassGrey = 128;

/// The colour burn of a sample by twice its high pass; from the grey of the high pass on the sample itself.
int burn(int original, int blurred) {
    const int highPass = clampToByte(original - blurred + kHighPassGrey);
    if (highPass >= kHighPassGrey) return original;
    if (highPass == 0) return 0;
    return std::max((original - 255) * 256 / (2 * highPass) + 255, 0);
}

/// The result for every original and blurred value: two bytes decide it.
using BrightenTable = std::array<std::array<Byte, 256>, 256>;

void fillTable(BrightenTable& table, float share) {
    for (int original = 0; original < 256; ++original)
        for (int blurred = 0; blurred < 256; ++blurred) {
            const auto o = static_cast<float>(original), v = static_cast<float>(burn(original, blurred));
            table[static_cast<std::size_t>(original)][static_cast<std::size_t>(blurred)] =
                static_cast<Byte>(o * (1.0f - share) + v * share);
        }
}

}  // namespace

void HighPassBrighten(ImageView image, int radius, int level) {
    // With no share of the burnt picture every sample comes out as it was.
    if (!image.valid() || level <= 0) return;
    const auto owned = std::make_unique<BrightenTable>();
    BrightenTable& table = *owned;
    fillTable(table, static_cast<float>(std::min(level, 10)) * 0.1f);

    const BlurSource source{image.data, image.width, image.height, image.stride, 4, 4, true};
    const int limited = std::max(stackBlurRadius(image.width, image.height, radius), 0);
    stackBlur(source, limited, stackBlurWorkers(image.width, image.height),
              [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                  Byte* samples = image.row(y) + first;
                  for (std::ptrdiff_t i = 0; i < count; i += 4)
                      for (std::ptrdiff_t c = i; c < i + 3; ++c) samples[c] = table[samples[c]][blurred[c]];
              });
}

}  // namespace zellab
