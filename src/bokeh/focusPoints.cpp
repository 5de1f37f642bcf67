#include "bokeh/focusPoints.h"

#include "bokeh/sceneLog.h"

namespace zellab::Bokeh {
namespace {

constexpr float kLargeSide = 0.05f;  // fraction of the picture; a face that isn't above it counts as small

}  // namespace

std::vector<FocusPoint> focusPointsOfFaces(int count, const float* faces) {
    std::vector<FocusPoint> points;
    if (!faces) return points;
    FocusPoint largestSmall;
    float largestArea = 0.0f;
    bool anySmall = false;
    for (int i = 0; i < count && static_cast<int>(points.size()) < kMostFocusPoints; ++i, faces += 4) {
        const float width = faces[2], height = faces[3];
        sceneLog().debug("face[%d] size %f %f", i, static_cast<double>(width), static_cast<double>(height));
        const FocusPoint centre{faces[1] + height * 0.5f, faces[0] + width * 0.5f};
        if (width > kLargeSide && height > kLargeSide) {
            points.push_back(centre);
        } else if (!anySmall || width * height > largestArea) {
            anySmall = true;
            largestArea = width * height;
            largestSmall = centre;
        }
    }
    if (points.empty() && anySmall) points.push_back(largestSmall);
    return points;
}

}  // namespace zellab::Bokeh
