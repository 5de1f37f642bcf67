#include <cmath>

#include "ZelEffectsCore/ZelEffect/FaceSlimRender/faceMeshWarp.h"
#include "ZelEffectsCore/ZelEffect/liquify/brushArguments.h"
#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"
#include "facepoints/faceData.h"
#include "frame/zel_log.h"
#include "zel_effects/zel_effects.h"

bool CFaceSlimRender::slimFace(unsigned char* image, int width, int height, float startX, float startY,
                               float endX, float endY, float radius, float strength) {
    if (!image || width < 1 || height < 1) {
        ZEL_LOG_ERROR("ERROR:CFaceSlimRender slimface,input data is NULL width=%d height=%d", width, height);
        return false;
    }
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    // Against the width alone, also for tall pictures.
    const float radiusPx = w * radius;
    if (zellab::kSmallestBrush > radiusPx) {
        ZEL_LOG_ERROR("ERROR:CFaceSlimRender slimface,radius(%.2f) should not be less than 2",
                      static_cast<double>(radiusPx));
        return false;
    }
    if (std::isnan(radius) || std::isnan(strength)) return true;  // no number, no brush
    constexpr int kPush = 2;
    zellab::CLiquify brush;
    brush.setImage({image, width, height});
    brush.setRadius(zellab::truncated(radiusPx));
    brush.setStrength(zellab::truncated(strength));
    brush.apply(zellab::truncated(w * endX), zellab::truncated(h * endY), zellab::truncated(w * startX),
                zellab::truncated(h * startY), kPush);
    return true;
}

bool CFaceSlimRender::autoSlimFace(unsigned char* image, int width, int height,
                                   zellab::CInterFacePoint* points, float strength, int faceIndex) {
    const zellab::FaceSlimFactors f;
    return autoSlimFace(image, width, height, points, strength, f.outerWeight, f.middleWeight, f.innerWeight,
                        f.upperFactor, f.lowerFactor, f.jawFactor, f.chinFactor, faceIndex);
}

bool CFaceSlimRender::autoSlimFace(unsigned char* image, int width, int height,
                                   zellab::CInterFacePoint* points, float strength, float outerWeight,
                                   float middleWeight, float innerWeight, float upperFactor,
                                   float lowerFactor, float jawFactor, float chinFactor, int faceIndex) {
    zellab::slimFaceByMesh({image, width, height}, zellab::facePointsAt(points, faceIndex),
                           {.strength = strength,
                            .outerWeight = outerWeight,
                            .middleWeight = middleWeight,
                            .innerWeight = innerWeight,
                            .upperFactor = upperFactor,
                            .lowerFactor = lowerFactor,
                            .jawFactor = jawFactor,
                            .chinFactor = chinFactor});
    return true;
}
