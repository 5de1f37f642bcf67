#include "beautykernel/scenario/personBeauty.h"

#include <cstring>

#include "beautykernel/lazybeauty/lazybeauty.h"
#include "facepoints/faceData.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

constexpr int kFirstFace = 0;

/// Shape of the slimmed face: strength, then the weights and pulls in the order of the call.
void slim(unsigned char* image, int width, int height, CInterFacePoint* points) {
    constexpr float kStrength = 0.5f, kOuter = 0.35f, kMiddle = 0.7f, kInner = 0.6f;
    constexpr float kUpper = 0.2f, kLower = 0.4f, kJaw = 0.34f, kChin = -0.5f;
    CFaceSlimRender::autoSlimFace(image, width, height, points, kStrength, kOuter, kMiddle, kInner, kUpper,
                                  kLower, kJaw, kChin, kFirstFace);
}

void enlargeEyes(unsigned char* image, int width, int height, CInterFacePoint* points) {
    constexpr float kStrength = 0.4f, kRatioLimit = 0.9f, kZoom = 0.2f, kRing = 1.0f;
    CEyeZoomRender::autoZoomEye(image, width, height, points, kStrength, kRatioLimit, kZoom, kRing,
                                kFirstFace);
}

void smoothSkin(unsigned char* image, int width, int height, FaceData& face) {
    constexpr bool kAutoLevels = true, kRepairSpots = true;
    constexpr int kSmoothLevel = 3, kOverlayLevel = 3;
    CLazyBeauty().run(image, width, height, kAutoLevels, kRepairSpots, kSmoothLevel, kOverlayLevel, 1, &face);
}

}  // namespace

void personBeauty(unsigned char* image, int width, int height, const ImageCoreFaceInfo* faceInfo,
                  unsigned char* blendSource) {
    constexpr float kCircleStrength = 0.55f;
    constexpr int kCircleMethod = 0;
    if (!image || width < 1 || height < 1 || !faceInfo || !blendSource || faceInfo->faceCount < 1) return;
    const ImageCoreFace& face = faceInfo->faces()[kFirstFace];
    CGRect rect = faceRectInPixels(face, width, height);
    CInterFacePoint points;
    points.SetFaceCount(1);
    points.AddFace(landmarksInPixels(face, width, height).data(), kFirstFace);

    slim(image, width, height, &points);
    enlargeEyes(image, width, height, &points);
    // Limits the rectangle to the picture, and what follows uses the limited one.
    ZelImageCore::TableSkin::ImageProcessWithAutoRemoveBlackCircle(
        image, width, height, rect, &points, kFirstFace, kCircleStrength, kCircleMethod);
    std::memcpy(blendSource, image, sampleCount(width, height, 4));
    FaceData record = makeFaceData(rect, points, kFirstFace, width, height);
    smoothSkin(image, width, height, record);
}

}  // namespace zellab
