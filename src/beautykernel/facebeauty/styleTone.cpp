#include "beautykernel/facebeauty/styleTone.h"

#include <cstdlib>
#include <memory>

#include "frame/zel_log.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/utils/zelFileUtils.h"

namespace zellab {

namespace {

using Texels = std::unique_ptr<unsigned char, decltype(&std::free)>;

/// A colour cube of 16 steps; null where it is missing or holds fewer texels.
Texels loadCube(const char* path) {
    constexpr std::size_t kCubeTexels = 64 * 64;
    int width = 0, height = 0;
    Texels texels(ZelFileUtils::LoadPPM(path, &width, &height, 4), std::free);
    if (sampleCount(width, height) < kCubeTexels) texels.reset();
    return texels;
}

void applyPortraitLook(ImageView image, float strength) {
    constexpr float kWholeFrom = 0.99f;
    const Texels cube = loadCube("style/base/tone3.bin");
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
    const Texels cube = loadCube(tone.airy ? "style/base/tone4.bin" : "style/base/tone3_1.bin");
    ApplyColorCube(image, cube.get());  // nothing without a table
}

}  // namespace zellab
