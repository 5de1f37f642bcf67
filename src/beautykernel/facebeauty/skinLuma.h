#pragma once

#include <optional>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/tone/levels.h"

namespace zellab {

/// How the lightness of skin is smoothed.
struct LumaSmoothing {
    float strength;                      // 0..1; what is no finite number counts as 0
    std::optional<LevelsParams> levels;  // of the mask
    bool edgeFilter;                     // smooth once more, along edges
};

/// Smooths the lightness of skin and sharpens it again, a little. Faint differences from the surroundings go,
/// strong ones stay, and so does everything dark. Hue and saturation stay; byte 3 becomes 255.
/// @param skin  plane of the picture's size, 255 on skin
void smoothSkinLuma(ImageView image, PlaneView<const Byte> skin, const LumaSmoothing& smoothing);

}  // namespace zellab
