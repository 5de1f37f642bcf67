#pragma once

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The crescent under one eye, in pixels of the plane that it is drawn into.
struct UnderEyeShape {
    Vector2f outerEnd, innerEnd;  // where it tapers off
    Vector2f middle;              // of its upper edge, just below the lid
    int band = 2;                 // height in the middle
};

/// Fills the crescent with 255: a closed contour of four cubic Bezier segments of 20 samples each, through
/// both ends, the middle, and a lower middle at the band's distance; clipped to the plane.
void drawUnderEyeShape(PlaneView<Byte> plane, const UnderEyeShape& shape);

}  // namespace zellab
