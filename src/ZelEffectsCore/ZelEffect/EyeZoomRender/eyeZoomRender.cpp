#include "ZelEffectsCore/ZelEffect/EyeZoomRender/eyeMeshWarp.h"
#include "ZelEffectsCore/ZelEffect/liquify/brushArguments.h"
#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"
#include "facepoints/faceData.h"
#include "frame/zel_log.h"
#include "zel_effects/zel_effects.h"

bool CEyeZoomRender::zoomEye(unsigned char* image, int width, int height, zellab::Vector2f center,
                             float radius, int strength) {
    if (!image || width < 1 || height < 1) {
        ZEL_LOG_ERROR("ERROR:CEyeZoomRender zoomEye,input data is NULL width=%d height=%d", width, height);
        return false;
    }
    const float radiusPx = static_cast<float>(width) * radius;
    if (zellab::kSmallestBrush > radiusPx) {
        ZEL_LOG_ERROR("ERROR:CEyeZoomRender zoomEye,radius(%.2f) should not be less than 2",
                      static_cast<double>(radiusPx));
        return false;
    }
    constexpr int kBulge = 0;
    const int x = zellab::truncated(static_cast<float>(width) * center.x);
    const int y = zellab::truncated(static_cast<float>(height) * center.y);
    zellab::CLiquify brush;
    brush.setImage({image, width, height});
    brush.setRadius(zellab::truncated(radiusPx));
    brush.setStrength(strength);
    brush.apply(x, y, x, y, kBulge);
    return true;
}

bool CEyeZoomRender::autoZoomEye(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                                 float strength, int faceIndex) {
    const zellab::EyeZoomFactors f;
    return autoZoomEye(image, width, height, points, strength, f.eyeRatioLimit, f.zoomFactor, f.ringScale,
                       faceIndex);
}

bool CEyeZoomRender::autoZoomEye(unsigned char* image, int width, int height, zellab::CInterFacePoint* points,
                                 float strength, float eyeRatioLimit, float zoomFactor, float ringScale,
                                 int faceIndex) {
    zellab::zoomEyesByMesh({image, width, height}, zellab::facePointsAt(points, faceIndex),
                           {.strength = strength,
                            .eyeRatioLimit = eyeRatioLimit,
                            .zoomFactor = zoomFactor,
                            .ringScale = ringScale});
    return true;
}
