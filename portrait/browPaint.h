#pragma once

#include "skinPaint.h"
#include "strokes.h"

namespace zel::drawing {

/// Hairs of both brows.
StrokeList drawBrows(const Studio& studio);

/// Lashes of all four lids.
StrokeList drawLashes(const Studio& studio);

/// Depth of a point of the head, 0 to 1: `mm` towards the camera from the point between the eyes.
inline float headDepth(float mm) {
    return 0.80f + mm * 0.0011f;
}

}  // namespace zel::drawing
