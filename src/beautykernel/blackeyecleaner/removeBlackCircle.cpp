#include <algorithm>
#include <cmath>
#include <vector>

#include "beautykernel/blackeyecleaner/blackEyeCleaner.h"
#include "beautykernel/blackeyecleaner/maskedLightening.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

namespace {

/// Limits a rectangle to the picture, in place; NaN becomes 0.
void limitToPicture(CGRect& rect, int width, int height) {
    const auto limit = [](float value, float high) { return value > 0.0f ? std::min(value, high) : 0.0f; };
    rect.x = limit(rect.x, static_cast<float>(width - 1));
    rect.y = limit(rect.y, static_cast<float>(height - 1));
    rect.width = limit(rect.width, static_cast<float>(width - 1) - rect.x);
    rect.height = limit(rect.height, static_cast<float>(height - 1) - rect.y);
}

}  // namespace

void TableSkin::ImageProcessWithAutoRemoveBlackCircle(unsigned char* image, int width, int height,
                                                      CGRect& faceRect, void* points, int faceIndex,
                                                      float strength, int method) {
    if (!(strength > 0.0f) || !image || width < 1 || height < 1) return;
    limitToPicture(faceRect, width, height);
    const auto* faces = static_cast<const zellab::CInterFacePoint*>(points);
    if (!faces || faces->GetFaceCount() < 1) return;

    zellab::DarkCircleRun run;
    run.points = faces->GetInterPoints(zellab::clampFaceIndex(faceIndex, faces->GetFaceCount()));
    run.rectX = static_cast<int>(faceRect.x), run.rectY = static_cast<int>(faceRect.y);
    run.rectWidth = static_cast<int>(faceRect.width), run.rectHeight = static_cast<int>(faceRect.height);
    run.strength = strength;
    if (method == 0) {
        zellab::CBlackEyeCleaner::Run(image, width, height, run);
    } else if (method == 1) {
        run.coreStrength = 1.0f;
        zellab::CBlackEyeCleanerB::Run(image, width, height, run);
    }
}

void TableSkin::ImageProcessWithRemoveBlackCircle(unsigned char* image, int width, int height,
                                                  unsigned char* mask, float* rect, int useMask) {
    if (useMask != 0) {
        zellab::lightenUnderMask(image, width, height, mask);
    } else if (rect && std::all_of(rect, rect + 4, [](float v) { return std::abs(v) < 1e6f; })) {
        const auto rounded = [](float v) { return static_cast<int>(std::lround(v)); };
        zellab::lightenRectangle(image, width, height, rounded(rect[0]), rounded(rect[1]), rounded(rect[2]),
                                 rounded(rect[3]));
    }
}

}  // namespace ZelImageCore
