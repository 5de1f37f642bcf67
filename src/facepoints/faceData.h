#pragma once

#include <array>

#include "zel_effects/interFacePoint.h"
#include "zel_effects/zel_records.h"

namespace zellab {

/// The beauty pipelines' record of one face, in pixels.
struct FaceData {
    int top = 1000000, bottom = -1, left = 1000000,
        right = -1;                                  // first and last row and column; empty at first
    Vector2f points[CInterFacePoint::kBlockPoints];  // the interpolated points; zero beyond pointCount
    int pointCount = 0;
    unsigned char flagA = 0, flagB = 0;  // the meaning is the pipeline's
};

/// The interpolated points of a face; an index out of range selects face 0. Null without faces.
inline const Vector2f* facePointsAt(const CInterFacePoint* faces, int index) {
    if (!faces || faces->GetFaceCount() < 1) return nullptr;
    return faces->GetInterPoints(clampFaceIndex(index, faces->GetFaceCount()));
}

/// A face's rectangle in pixels.
CGRect faceRectInPixels(const ImageCoreFace& face, int width, int height);

/// A face's landmarks in pixels, as they stand: they may lie outside the picture.
std::array<Vector2f, CInterFacePoint::kLandmarkCount> landmarksInPixels(const ImageCoreFace& face, int width,
                                                                        int height);

/// The record of face `index` of `points`, with the box of a rectangle in pixels: its last row and column are
/// those of x + width - 1 and y + height - 1, each limited to 0..size. flagB is set.
FaceData makeFaceData(const CGRect& rect, const CInterFacePoint& points, int index, int width, int height);

/// The record in a picture `scale` times as large: box and points truncated to whole pixels; what fits no
/// picture becomes 0.
FaceData scaledFace(const FaceData& face, float scale);

/// Limits the box to 0..width and 0..height.
void limitFaceBox(FaceData& face, int width, int height);

}  // namespace zellab
