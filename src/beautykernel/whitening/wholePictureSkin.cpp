// The exported skin operations that know no face.
#include <algorithm>
#include <array>
#include <cmath>

#include "beautykernel/skintools/skinMaskFromColor.h"
#include "beautykernel/skintools/skinOperation.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/edgeaware/surfaceBlur.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace zellab {

namespace {

constexpr int kSkinAbove = 100;  // of red over blue; less is no skin
constexpr int kSurfaceThreshold = 10;

/// Red over blue where it says skin, 0 elsewhere.
Plane<Byte> reddishPixels(ConstImageView image) {
    Plane<Byte> mask(image.width, image.height);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const Byte* p = image.row(y);
            Byte* row = mask.view().row(y);
            for (int x = 0; x < image.width; ++x, p += 4) {
                const int value = redOverBlue(p[0], p[2]);
                row[x] = static_cast<Byte>(value > kSkinAbove ? value : 0);
            }
        }
    });
    return mask;
}

/// Smooths the reddish pixels, mixes and brightens everything.
void smoothAndBrighten(ImageView image, int radius, const MixWeights& weights, const ByteTable& curve) {
    const Plane<Byte> mask = reddishPixels(image);
    SurfaceBlurFilter filter;
    filter.Run(image, radius, kSurfaceThreshold, mask.view());
    const ConstImageView before = filter.before();
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* p = image.row(y);
            const Byte *from = before.row(y), *reddish = mask.view().row(y);
            for (int x = 0; x < image.width; ++x, p += 4, from += 4) {
                const int share = reddish[x] == 0 ? 0 : reddish[x] + 1;
                for (int c = 0; c < 3; ++c) {
                    const int smooth = (from[c] * (256 - share) + p[c] * share) >> 8;
                    p[c] = curve[weights(from[c], smooth)];
                }
            }
        }
    });
}

}  // namespace

}  // namespace zellab

namespace ZelImageCore {

using namespace zellab;

void TableSkin::ImageProcessWithSkin(unsigned char* image, int width, int height, float* params,
                                     char* /*unused*/) {
    constexpr float kMixRange = 10.0f;
    const ImageView picture(image, width, height);
    if (!picture.valid() || !params || std::any_of(params, params + 4, [](float p) { return std::isnan(p); }))
        return;
    const int radius = truncateToInt(params[0]);
    const float mix = params[1] / kMixRange, level = params[2], tone = params[3];
    if (radius > 0)
        smoothAndBrighten(picture, radius, MixWeights(mix), brightnessCurve(brightnessHeight(level)));
    if (tone < 0.0f)
        ToneTableBlend(picture, -tone);
    else
        ToneTableBlendWarm(picture, tone);
}

void TableSkin::ImageProcessWithSkinColor(unsigned char* image, int width, int height, float strength,
                                          float level, const unsigned char* neutralTable, int tableWidth,
                                          int tableHeight) {
    constexpr int kCubeSide = 64;
    constexpr float kStep = 4.0f, kBase = 137.0f;
    const ImageView picture(image, width, height);
    // The lookup reads a whole cube, however few texels the table claims to have.
    if (!picture.valid() || !neutralTable ||
        sampleCount(tableWidth, tableHeight) < sampleCount(kCubeSide, kCubeSide) || std::isnan(strength) ||
        std::isnan(level))
        return;
    RgbaImage cube = copyOf(ConstImageView(neutralTable, kCubeSide, kCubeSide));
    mapPixels(cube.view(), brightnessCurve(truncateToInt(level * kStep + kBase)));
    ColorTemperatureBlend(cube.view(), strength, 0);
    ApplyColorCube(picture, cube.data());
}

}  // namespace ZelImageCore
