#include "beautykernel/scenario/defog.h"
#include "beautykernel/scenario/personBeauty.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/zelfilteronline/zellabSharp.h"

namespace ZelImageCore {

namespace {

/// From this strength on, 17 float steps below 1, the recipe is not blended with the picture that it started
/// from.
constexpr float kFullStrength = 0x1.ffffdep-1f;

void sharpen(zellab::ImageView image) {
    constexpr float kFine = 0.6f, kStructure = 0.6f;
    zelfilteronline::CZellabSharp().Run(image, kFine, kStructure, true);
}

void unsharp(zellab::ImageView image) {
    constexpr int kPercent = 100;
    constexpr float kRadius = 2.0f;
    constexpr unsigned char kThreshold = 7;
    zellab::UnsharpMask(image, kPercent, kRadius, kThreshold);
}

}  // namespace

CScenarioBeauty::CScenarioBeauty() {}
CScenarioBeauty::~CScenarioBeauty() {}

bool CScenarioBeauty::Run(unsigned char* image, int width, int height, eScenarioType type, float alpha,
                          unsigned char* lookup, ImageCoreFaceInfo* faceInfo) {
    alpha = alpha > 1.0f ? 1.0f : alpha > 0.0f ? alpha : 0.0f;  // NaN becomes 0
    if (alpha == 0.0f && type != eScenario2) return false;
    const zellab::ImageView picture(image, width, height);
    if (!picture.valid()) return false;

    zellab::RgbaImage blendSource;
    if (alpha < kFullStrength) {
        // With a face the portrait recipe writes the reshaped picture over it.
        const bool isOverwritten = type == eScenario2 && faceInfo && faceInfo->faceCount >= 1;
        blendSource = isOverwritten ? zellab::RgbaImage(width, height) : zellab::copyOf(picture);
    }
    switch (type) {
        case eScenario1:
        case eScenario3:
        case eScenario4:
            zellab::ApplyColorCube(picture, lookup);
            sharpen(picture);
            break;
        case eScenario2:
            // At full strength there is no blend source, and without one the recipe does nothing.
            zellab::personBeauty(picture, faceInfo, blendSource.view());
            zellab::ApplyColorCube(picture, lookup);
            break;
        case eScenario5:
        case eScenario7:
            zellab::ApplyColorCube(picture, lookup);
            unsharp(picture);
            break;
        case eScenario6:
            zellab::defog(picture);
            break;
        default:
            break;
    }
    if (alpha < kFullStrength) zellab::MixByAlpha(picture, blendSource.view(), picture, alpha);
    return true;
}

void CScenarioBeauty::Defog(unsigned char* image, int width, int height) {
    zellab::defog({image, width, height});
}

void CScenarioBeauty::PersonBeautyFilter(unsigned char* image, int width, int height,
                                         ImageCoreFaceInfo* faceInfo, unsigned char* blendSource) {
    zellab::personBeauty({image, width, height}, faceInfo, {blendSource, width, height});
}

}  // namespace ZelImageCore
