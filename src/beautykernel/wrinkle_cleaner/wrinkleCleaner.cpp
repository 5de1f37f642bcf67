#include "beautykernel/wrinkle_cleaner/wrinkleMaskCleaner.h"
#include "beautykernel/wrinkle_cleaner/wrinkleRegionCleaner.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

void TableSkin::ImageProcessWithWrinkleCleaner(unsigned char* image, int width, int height,
                                               unsigned char* mask, int strength, int method) {
    constexpr int kRegionMethod = 2;
    constexpr int kRegionStrength = 100;  // percent; the caller's strength does not act on this path
    const zellab::ImageView picture(image, width, height);
    const zellab::PlaneView<const zellab::Byte> wrinkles(mask, width, height);
    if (method == kRegionMethod) {
        zellab::WrinkleRegionCleaner cleaner;
        if (cleaner.Prepare(wrinkles)) cleaner.Apply(picture, kRegionStrength);
    } else {
        zellab::WrinkleMaskCleaner().Run(picture, wrinkles, strength);
    }
}

}  // namespace ZelImageCore
