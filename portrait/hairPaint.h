#pragma once

#include "skinPaint.h"
#include "strokes.h"

namespace zel::drawing {

struct HairStrokes {
    StrokeList back;   // behind neck and shoulders
    StrokeList front;  // over everything else
};

/// All scalp hair, strand by strand over a darker ground, with fine single hairs at its edge.
HairStrokes drawHair(const Studio& studio);

}  // namespace zel::drawing
