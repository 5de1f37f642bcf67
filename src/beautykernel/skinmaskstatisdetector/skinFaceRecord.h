#pragma once

#include "zel_effects/interFacePoint.h"

namespace zelbeauty {

/// A face as the skin and fleck tools see it: the box in pixels, already limited to the picture, and the
/// interpolated points.
struct SkinFaceRecord {
    int top = 0, bottom = 0, left = 0, right = 0;
    zellab::Vector2f points[zellab::CInterFacePoint::kBlockPoints];
    int pointCount = 0;
    unsigned char hasExternalMask = 0;
    unsigned char detectFlecks = 0;
};

}  // namespace zelbeauty
