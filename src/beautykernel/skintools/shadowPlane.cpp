#include "beautykernel/skintools/shadowPlane.h"

#include "beautykernel/skintools/shadowTable.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

Plane<Byte> overlayLightness(ConstImageView image, const OverlayTable& overlay, LightnessOf channels) {
    const std::size_t other = channels == LightnessOf::greenAndBlue ? 2 : 1;
    Plane<Byte> plane(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        const Byte* p = image.row(y);
        Byte* row = plane.row(y);
        for (int x = 0; x < image.width; ++x, p += 4) row[x] = overlay(p[1], p[other]);
    }
    return plane;
}

ShadowPlanes shadowPlanes(const Plane<Byte>& lightness, PlaneView<const Byte> skinMask, int radius) {
    const int width = lightness.width(), height = lightness.height();
    ShadowPlanes planes{copyOf(lightness.view()), Plane<Byte>(width, height)};
    StackBlurGray(planes.highPass.view(), radius);
    for (int y = 0; y < height; ++y) {
        const Byte *light = lightness.row(y), *skin = skinMask.row(y);
        Byte *highPass = planes.highPass.row(y), *shadow = planes.shadow.row(y);
        for (int x = 0; x < width; ++x) {
            highPass[x] = clampToByte(light[x] - highPass[x] + 128);
            shadow[x] = static_cast<Byte>(kShadowWeight[highPass[x]] * skin[x] / 255);
        }
    }
    return planes;
}

int shadowLiftTarget(int skinBrightness) {
    if (skinBrightness < 61) return 156;
    if (skinBrightness < 101) return 152;
    if (skinBrightness < 141) return 150;
    return skinBrightness <= 200 ? 148 : 145;
}

void mapRowByWeight(Byte* pixels, std::span<const Byte> weights, const WeightTables& tables) {
    const ByteTable* const first = tables.data();  // the bytes written might alias the vector's own pointer
    for (const Byte weight : weights) {
        const ByteTable& table = first[weight];
        for (int c = 0; c < 3; ++c) pixels[c] = table[pixels[c]];
        pixels += 4;
    }
}

void mapByPlane(ImageView image, PlaneView<const Byte> weights, const WeightTables& tables) {
    const auto width = static_cast<std::size_t>(image.width);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) mapRowByWeight(image.row(y), {weights.row(y), width}, tables);
    });
}

}  // namespace zellab
