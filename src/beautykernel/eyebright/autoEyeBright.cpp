#include "beautykernel/eyebright/eyeBright.h"
#include "facepoints/faceData.h"
#include "zel_effects/zel_effects.h"

void ZelImageCore::TableSkin::ImageProcessWithAutoEyeBright(
    unsigned char* image, int width, int height, void* points, int faceIndex, float overallGain,
    float bandOffset, float reservedShade, float highlightGain, float whiteGain, float darkTolerance,
    float irisGain, float filterRadius, float filterEps, float filterScale) {
    using namespace zellab;
    constexpr float kPercent = 100.0f;
    const Vector2f* face = facePointsAt(static_cast<const CInterFacePoint*>(points), faceIndex);
    if (!face) return;
    EyeBright::Run({image, width, height}, face,
                   {.overallGain = overallGain / kPercent,
                    .bandOffset = bandOffset / kPercent,
                    .reservedShade = reservedShade / kPercent,
                    .highlightGain = highlightGain / kPercent,
                    .whiteGain = whiteGain / kPercent,
                    .darkTolerance = darkTolerance / kPercent,
                    .irisGain = irisGain / kPercent,
                    .filterRadius = filterRadius,
                    .filterEps = filterEps,
                    .filterScale = filterScale});
}
