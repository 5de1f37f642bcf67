// The exported removal of dark circles, found by the face's points or marked by the host.
#include <algorithm>
#include <cmath>

#include "beautykernel/blackeyecleaner/darkCircles.h"
#include "beautykernel/blackeyecleaner/maskedLightening.h"
#include "facepoints/faceData.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

using namespace zellab;

void TableSkin::ImageProcessWithAutoRemoveBlackCircle(unsigned char* image, int width, int height,
                                                      CGRect& faceRect, void* points, int faceIndex,
                                                      float strength, int method) {
    const ImageView picture(image, width, height);
    if (!(strength > 0.0f) || !picture.valid()) return;
    limitToPicture(faceRect, width, height);
    removeDarkCircles(picture, faceRect, facePointsAt(static_cast<const CInterFacePoint*>(points), faceIndex),
                      strength, method);
}

void TableSkin::ImageProcessWithRemoveBlackCircle(unsigned char* image, int width, int height,
                                                  unsigned char* mask, float* rect, int useMask) {
    constexpr float kFarthest = 1e6f;  // pixels; no picture is larger
    const ImageView picture(image, width, height);
    if (!picture.valid()) return;
    if (useMask != 0) {
        lightenUnderMask(picture, {mask, width, height});
    } else if (rect && std::all_of(rect, rect + 4, [](float v) { return std::abs(v) < kFarthest; })) {
        const auto rounded = [](float v) { return static_cast<int>(std::lround(v)); };
        const int x = rounded(rect[0]), y = rounded(rect[1]);
        lightenRectangle(picture, {{x, x + rounded(rect[2])}, {y, y + rounded(rect[3])}});
    }
}

}  // namespace ZelImageCore
