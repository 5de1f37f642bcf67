#include "frame/faceData.h"

#include <algorithm>

namespace zellab {

namespace {

/// Truncates into [0, size]; what is not above 0, NaN included, becomes 0.
int limitedTo(float value, int size) {
    if (!(value > 0.0f)) return 0;
    return static_cast<int>(std::min(value, static_cast<float>(size)));
}

}  // namespace

CGRect faceRectInPixels(const ImageCoreFace& face, int width, int height) {
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    return {face.rect[0] * w, face.rect[1] * h, face.rect[2] * w, face.rect[3] * h};
}

std::array<Vector2f, CInterFacePoint::kLandmarkCount> landmarksInPixels(const ImageCoreFace& face, int width,
                                                                        int height) {
    std::array<Vector2f, CInterFacePoint::kLandmarkCount> points;
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {face.points[i][0] * static_cast<float>(width),
                     face.points[i][1] * static_cast<float>(height)};
    return points;
}

FaceData makeFaceData(const CGRect& rect, const CInterFacePoint& points, int index, int width, int height) {
    FaceData face;
    face.left = limitedTo(rect.x, width);
    face.top = limitedTo(rect.y, height);
    face.right = limitedTo(rect.x + rect.width - 1.0f, width);
    face.bottom = limitedTo(rect.y + rect.height - 1.0f, height);
    face.flagB = 1;
    face.pointCount = std::clamp(points.GetInterPointCount(), 0, CInterFacePoint::kBlockPoints);
    if (const Vector2f* list = points.GetInterPoints(index)) std::copy_n(list, face.pointCount, face.points);
    return face;
}

}  // namespace zellab
