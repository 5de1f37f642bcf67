#pragma once

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/poisson/transformSize.h"

namespace zellab {

/// A rectangle of pixels.
struct PixelBox {
    Span x, y;
    bool empty() const { return x.length() < 1 || y.length() < 1; }
};

/// The bounding box of the mask samples above a value; empty where there is none.
PixelBox markedBox(PlaneView<const Byte> mask, int above);

/// The span grown by a margin on both sides, inside [0, size).
Span widen(Span span, int margin, int size);

}  // namespace zellab
