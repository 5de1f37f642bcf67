// The exported skin retouch.
#include <cmath>
#include <vector>

#include "beautykernel/eyebright/eyeBright.h"
#include "beautykernel/facebeauty/facebeauty.h"
#include "beautykernel/skintools/skinOperation.h"
#include "facepoints/faceData.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/combinePixels.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace zellab {

namespace {

FaceBeautyParams retouchParams() {
    FaceBeautyParams params;
    params.autoLevels = 1;
    params.alternateFinish = 1;
    params.toneStrength = 1.0f;
    params.smoothStrength = 0.5f;
    return params;
}

void retouchSkin(ImageView image, float strength, const ImageCoreFaceInfo* faceInfo) {
    constexpr int kCurveHeight = 137;
    constexpr float kNeutralTemperature = 0.5f;
    CInterFacePoint points;
    addLimitedFaces(points, faceInfo, image.width, image.height);
    AutoLevels(image);
    brightenEyes(image, facePointsAt(&points, 0));

    std::vector<Byte> work(image.data, image.data + sampleCount(image.width, image.height, 4));
    FaceData face;
    const int faceCount = points.GetFaceCount() > 0 ? 1 : 0;
    if (faceCount > 0)
        face = makeFaceData(faceRectInPixels(faceInfo->faces()[0], image.width, image.height), points, 0,
                            image.width, image.height);
    const FaceBeautyParams params = retouchParams();
    CFaceBeauty().Run(work.data(), image.width, image.height, nullptr, 0, 0, faceCount, &face, &params);
    combinePixels(image, image, {work.data(), image.width, image.height}, MixWeights(strength));
    mapPixels(image, brightnessCurve(kCurveHeight).data());
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
    std::vector<Byte> before;
    if (mask) before.assign(image, image + sampleCount(width, height, 4));
    retouchSkin(picture, strength, faceInfo);
    if (mask) mixByMask(picture, {before.data(), width, height}, {mask, width, height});
}
