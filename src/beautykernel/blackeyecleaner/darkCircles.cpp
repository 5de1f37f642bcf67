#include "beautykernel/blackeyecleaner/darkCircles.h"

#include <algorithm>

#include "beautykernel/blackeyecleaner/blackEyeCleaner.h"

namespace zellab {

void limitToPicture(CGRect& rect, int width, int height) {
    const auto limit = [](float value, float high) { return value > 0.0f ? std::min(value, high) : 0.0f; };
    rect.x = limit(rect.x, static_cast<float>(width - 1));
    rect.y = limit(rect.y, static_cast<float>(height - 1));
    rect.width = limit(rect.width, static_cast<float>(width - 1) - rect.x);
    rect.height = limit(rect.height, static_cast<float>(height - 1) - rect.y);
}

void removeDarkCircles(ImageView image, const CGRect& faceRect, const Vector2f* points, float strength,
                       int method) {
    constexpr float kCoreStrengthB = 1.0f;
    if (!image.valid() || !points) return;
    DarkCircleRun run;
    run.points = points;
    run.rectX = static_cast<int>(faceRect.x), run.rectY = static_cast<int>(faceRect.y);
    run.rectWidth = static_cast<int>(faceRect.width), run.rectHeight = static_cast<int>(faceRect.height);
    run.strength = strength;
    if (method == kDarkCircleMethodA) {
        CBlackEyeCleaner::Run(image, run);
    } else if (method == kDarkCircleMethodB) {
        run.coreStrength = kCoreStrengthB;
        CBlackEyeCleanerB::Run(image, run);
    }
}

}  // namespace zellab
