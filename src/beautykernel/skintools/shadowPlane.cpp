#include "beautykernel/skintools/shadowPlane.h"

#include <algorithm>
#include <array>

#include "zellab/imageproc/pixelMath.h"
#include "zellab/imageproc/stackBlur.h"

namespace zellab {

namespace {

/// Weight of a shadow by its high pass: measured values, without a formula.
constexpr std::array<Byte, 256> kShadowWeight = {
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 254, 254, 254, 254, 254, 253, 253, 253,
    253, 252, 252, 252, 251, 251, 250, 250, 249, 248, 248, 247, 246, 246, 245, 244, 243, 242, 240, 240,
    238, 236, 235, 233, 232, 229, 227, 225, 223, 220, 218, 215, 211, 208, 205, 201, 197, 193, 188, 183,
    180, 175, 169, 162, 157, 150, 143, 135, 120, 112, 105, 98,  93,  86,  80,  75,  72,  67,  62,  58,
    54,  50,  47,  44,  40,  37,  35,  32,  30,  28,  26,  23,  22,  20,  19,  17,  15,  15,  13,  12,
    11,  10,  9,   9,   8,   7,   7,   6,   5,   5,   4,   4,   3,   3,   3,   2,   2,   2,   2,   1,
    1,   1,   1,   1,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0};

}  // namespace

Plane<Byte> overlayLightness(ConstImageView image, const OverlayTable& overlay, LightnessOf channels) {
    const std::size_t other = channels == LightnessOf::greenAndBlue ? 2 : 1;
    Plane<Byte> plane(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        const Byte* p = image.row(y);
        Byte* row = plane.view().row(y);
        for (int x = 0; x < image.width; ++x, p += 4) row[x] = overlay(p[1], p[other]);
    }
    return plane;
}

ShadowPlanes shadowPlanes(const Plane<Byte>& lightness, PlaneView<const Byte> skinMask, int radius) {
    const int width = lightness.width(), height = lightness.height();
    ShadowPlanes planes{Plane<Byte>(width, height), Plane<Byte>(width, height)};
    Byte* highPass = planes.highPass.data();
    std::copy_n(lightness.data(), lightness.size(), highPass);
    StackBlurGray(highPass, width, height, radius);
    for (std::size_t i = 0; i < lightness.size(); ++i) {
        highPass[i] = clampToByte(lightness.data()[i] - highPass[i] + 128);
        planes.shadow.data()[i] = static_cast<Byte>(kShadowWeight[highPass[i]] * skinMask.data[i] / 255);
    }
    return planes;
}

}  // namespace zellab
