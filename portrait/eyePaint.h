#pragma once

#include "skinPaint.h"

namespace zel::drawing {

struct EyeSample {
    Colour colour;
    float cover = 0;  // share of the pixel between the lids
    float iris = 0;   // share of it that is iris or pupil
};

/// What is seen between the lids at a point of the face: white, iris, pupil, wet rim, the lamp's reflection.
EyeSample paintEye(const Studio& studio, const EyeShape& eye, Vec2 face, const LitPoint& point, float shadow);

/// Lid crease, lash line and the lids' own shading, laid over finished skin.
Colour paintLids(const Studio& studio, const EyeShape& eye, Vec2 face, Colour skin);

}  // namespace zel::drawing
