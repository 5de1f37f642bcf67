#pragma once

#include "skinPaint.h"

namespace zel::drawing {

/// What a part of the body shows at a pixel.
struct BodySample {
    Colour colour;
    float cover = 0;
    float skin = 0;  // share of the cover that is bare skin
    float depth = 0;
};

/// Neck, shoulders and clothes.
BodySample paintBody(const Studio& studio, Vec2 pixel, float hairShadow);

/// One ear; `side` is -1 for the picture's left.
BodySample paintEar(const Studio& studio, float side, Vec2 pixel, float hairShadow);

}  // namespace zel::drawing
