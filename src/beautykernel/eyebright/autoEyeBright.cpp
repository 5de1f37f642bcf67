#include "beautykernel/eyebright/eyeBright.h"
#include "zel_effects/interFacePoint.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

void TableSkin::ImageProcessWithAutoEyeBright(unsigned char* image, int width, int height, void* points,
                                              int faceIndex, float overallGain, float bandOffset,
                                              float reservedShade, float highlightGain, float whiteGain,
                                              float darkTolerance, float irisGain, float filterRadius,
                                              float filterEps, float filterScale) {
    const auto* faces = static_cast<const zellab::CInterFacePoint*>(points);
    if (!faces || faces->GetFaceCount() < 1) return;
    const zellab::Vector2f* face =
        faces->GetInterPoints(zellab::clampFaceIndex(faceIndex, faces->GetFaceCount()));
    if (!face) return;
    zellab::EyeBright().Run(image, width, height, overallGain, bandOffset, reservedShade, highlightGain,
                            whiteGain, darkTolerance, irisGain, filterRadius, filterEps, filterScale,
                            &face->x);
}

}  // namespace ZelImageCore
