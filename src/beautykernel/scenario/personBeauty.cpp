#include "beautykernel/scenario/personBeauty.h"

#include "ZelEffectsCore/ZelEffect/EyeZoomRender/eyeMeshWarp.h"
#include "ZelEffectsCore/ZelEffect/FaceSlimRender/faceMeshWarp.h"
#include "beautykernel/blackeyecleaner/darkCircles.h"
#include "beautykernel/lazybeauty/lazybeauty.h"
#include "facepoints/faceData.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

constexpr FaceSlimFactors kSlimming = {.strength = 0.5f,
                                       .outerWeight = 0.35f,
                                       .middleWeight = 0.7f,
                                       .innerWeight = 0.6f,
                                       .upperFactor = 0.2f,
                                       .lowerFactor = 0.4f,
                                       .jawFactor = 0.34f,
                                       .chinFactor = -0.5f};
constexpr EyeZoomFactors kEnlarging = {
    .strength = 0.4f, .eyeRatioLimit = 0.9f, .zoomFactor = 0.2f, .ringScale = 1.0f};
constexpr float kCircleStrength = 0.55f;
constexpr LazyBeautyParams kSmoothing = {
    .autoLevels = true, .repairSpots = true, .smoothLevel = 3, .overlayLevel = 3};

}  // namespace

void personBeauty(ImageView image, const ImageCoreFaceInfo* faceInfo, ImageView blendSource) {
    constexpr int kFirstFace = 0;
    if (!image.valid() || !blendSource.valid() || !faceInfo || faceInfo->faceCount < 1) return;
    const ImageCoreFace& face = faceInfo->faces()[kFirstFace];
    CGRect rect = faceRectInPixels(face, image.width, image.height);
    CInterFacePoint points;
    points.SetFaceCount(1);
    points.AddFace(landmarksInPixels(face, image.width, image.height).data(), kFirstFace);
    const Vector2f* facePoints = facePointsAt(&points, kFirstFace);

    slimFaceByMesh(image, facePoints, kSlimming);
    zoomEyesByMesh(image, facePoints, kEnlarging);
    limitToPicture(rect, image.width, image.height);
    removeDarkCircles(image, rect, facePoints, kCircleStrength, kDarkCircleMethodA);
    copyPixels(image, blendSource);
    const FaceData record = makeFaceData(rect, points, kFirstFace, image.width, image.height);
    CLazyBeauty().run(image, kSmoothing, &record);
}

}  // namespace zellab
