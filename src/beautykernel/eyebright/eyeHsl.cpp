#include "beautykernel/eyebright/eyeHsl.h"

#include <algorithm>
#include <cmath>

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int kGreyHue = 170;  // what a pixel without a hue is given

/// A channel whose hue lies `sixths` sectors from red.
Byte channel(float low, float high, float sixths) {
    const float t = sixths - 6.0f * std::floor(sixths / 6.0f);
    float value = low;
    if (t < 1.0f)
        value = low + (high - low) * t;
    else if (t < 3.0f)
        value = high;
    else if (t < 4.0f)
        value = low + (high - low) * (4.0f - t);
    return truncateToByte(value * 255.0f + 0.5f);
}

}  // namespace

EyeHsl toHsl(const Byte* rgb) {
    const int r = rgb[0], g = rgb[1], b = rgb[2];
    const int most = std::max({r, g, b}), least = std::min({r, g, b}), range = most - least,
              sum = most + least;
    EyeHsl hsl = {kGreyHue, 0, (sum + 1) / 2};
    if (range == 0) return hsl;
    hsl.saturation = range * 255 / (sum < 255 ? sum : 510 - sum);
    if (r == most)
        hsl.hue = (g - b) * 42 / range;
    else if (g == most)
        hsl.hue = 85 + (b - r) * 42 / range;
    else
        hsl.hue = (r - g) * 42 / range - 86;
    return hsl;
}

void fromHsl(const EyeHsl& hsl, Byte* rgb) {
    if (hsl.saturation == 0) {
        std::fill_n(rgb, 3, static_cast<Byte>(hsl.lightness));
        return;
    }
    const float l = static_cast<float>(hsl.lightness) / 255.0f,
                s = static_cast<float>(hsl.saturation) / 255.0f;
    const float high = l < 0.5f ? l * (1.0f + s) : l + s - l * s, low = 2.0f * l - high;
    const float sixths = static_cast<float>(hsl.hue) * (6.0f / 256.0f);
    rgb[0] = channel(low, high, sixths + 2.0f);
    rgb[1] = channel(low, high, sixths);
    rgb[2] = channel(low, high, sixths - 2.0f);
}

}  // namespace zellab
