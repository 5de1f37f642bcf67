// The exported skin retouch.
#include <cmath>

#include "beautykernel/eyebright/eyeBright.h"
#include "beautykernel/facebeauty/facebeauty.h"
#include "beautykernel/skintools/skinOperation.h"
#include "facepoints/faceData.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/combinePixels.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace zellab {

namespace {

constexpr FaceBeautyParams kRetouch = {
    .autoLevels = true, .alternateFinish = true, .toneStrength = 1.0f, .smoothStrength = 0.5f};

void retouchSkin(ImageView image, float strength, const ImageCoreFaceInfo* faceInfo) {
    constexpr int kCurveHeight = 137;
    constexpr float kNeutralTemperature = 0.5f;
    CInterFacePoint points;
    addLimitedFaces(points, faceInfo, image.width, image.height);
    AutoLevels(image);
    brightenEyes(image, facePointsAt(&points, 0));

    RgbaImage work = copyOf(image);
    FaceData face;
    const bool hasFace = points.GetFaceCount() > 0;
    if (hasFace)
        face = makeFaceData(faceRectInPixels(faceInfo->faces()[0], image.width, image.height), points, 0,
                            image.width, image.height);
    CFaceBeauty().Run(work.view(), {}, hasFace ? &face : nullptr, kRetouch);
    combinePixels(image, image, work.view(), MixWeights(strength));
    mapPixels(image, brightnessCurve(kCurveHeight));
    ColorTemperatureBlend(image, kNeutralTemperature, 0);
}

}  // namespace

}  // namespace zellab

void ZelImageCore::TableSkin::ImageProcessWithQornSkinRetouch(unsigned char* image, int width, int height,
                                                              float strength, ImageCoreFaceInfo* faceInfo,
                                                              unsigned char* mask) {
    using namespace zellab;
    const ImageView picture(image, width, height);
    if (!picture.valid() || std::isnan(strength)) return;
    const RgbaImage before = mask ? copyOf(picture) : RgbaImage();
    retouchSkin(picture, strength, faceInfo);
    if (mask) mixByMask(picture, before.view(), {mask, width, height});
}
