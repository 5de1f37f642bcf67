#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Hue, saturation and lightness in whole steps. The hue counts 256ths of the circle: 0 red, 85 green, and
/// just below 0 the purples.
struct EyeHsl {
    int hue, saturation, lightness;
};

EyeHsl toHsl(const Byte* rgb);
/// Writes three bytes. Any hue counts modulo 256; saturation and lightness lie in 0..255.
void fromHsl(const EyeHsl& hsl, Byte* rgb);

}  // namespace zellab
