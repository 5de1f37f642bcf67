#include "facepoints/faceData.h"

#include <algorithm>

namespace zellab {

namespace {

/// Truncates into [0, size]; what is not above 0, NaN included, becomes 0.
int limitedTo(float value, int size) {
    if (!(value > 0.0f)) return 0;
    return static_cast<int>(std::min(value, static_cast<float>(size)));
}

/// Truncates a scaled coordinate; what fits no picture becomes 0.
float truncated(float value) {
    return value > -1e9f && value < 1e9f ? static_cast<float>(static_cast<int>(value)) : 0.0f;
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

FaceData scaledFace(const FaceData& face, float scale) {
    const auto scaled = [scale](int value) {
        return static_cast<int>(truncated(static_cast<float>(value) * scale));
    };
    FaceData small = face;
    small.top = scaled(face.top), small.bottom = scaled(face.bottom);
    small.left = scaled(face.left), small.right = scaled(face.right);
    for (Vector2f& p : small.points) p = {truncated(p.x * scale), truncated(p.y * scale)};
    return small;
}

void limitFaceBox(FaceData& face, int width, int height) {
    face.left = std::clamp(face.left, 0, width), face.right = std::clamp(face.right, 0, width);
    face.top = std::clamp(face.top, 0, height), face.bottom = std::clamp(face.bottom, 0, height);
}

}  // namespace zellab
