#include "beautykernel/facebeauty/styleTone.h"

#include <utility>
#include <vector>

#include "beautykernel/skintools/styleAsset.h"
#include "frame/zel_log.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

/// A colour cube of 16 steps; null where it is missing or holds fewer texels.
auto loadCube(const char* path) {
    constexpr std::size_t kCubeTexels = 64 * 64;
    StyleAsset asset = loadStyleAsset(path);
    if (sampleCount(asset.width, asset.height) < kCubeTexels) asset.pixels.reset();
    return std::move(asset.pixels);
}

void applyPortraitLook(ImageView image, float strength) {
    constexpr float kWholeFrom = 0.99f;
    const auto cube = loadCube("style/base/tone3.bin");
    if (!cube) {
        ZEL_LOG_ERROR_AT("beautykernel/facebeauty/facebeauty.cpp", 434,
                         "ERROR: CFaceBeauty::Run8kelyy, Could not find lut table: style/base/tone3.bin \n");
        return;
    }
    if (strength > kWholeFrom) {
        ApplyColorCube(image, cube.get());
        return;
    }
    const RgbaImage before = copyOf(image);
    ApplyColorCube(image, cube.get());
    MixByAlpha(image, before.view(), image, strength);
}

}  // namespace

void applyStyleTone(ImageView image, const StyleTone& tone) {
    constexpr float kFaintUpTo = 0.01f;
    if (!tone.airy && tone.strength > kFaintUpTo) {
        applyPortraitLook(image, tone.strength);
        return;
    }
    const auto cube = loadCube(tone.airy ? "style/base/tone4.bin" : "style/base/tone3_1.bin");
    ApplyColorCube(image, cube.get());  // nothing without a table
}

}  // namespace zellab
