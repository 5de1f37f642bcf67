#pragma once

#include <vector>

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Fills a polygon into a plane with `value`; the points are taken in order and
/// closed. One span a row: from the first inside pixel to the last one that a bisection from there to the
/// right bound reaches, so a concave polygon is filled across its gaps. Points may lie outside the plane.
/// @return false, the plane untouched, for a view that is not valid or an empty polygon; a polygon with a
///         point that is not finite fills nothing and returns true
bool FillPolygonMask(PlaneView<Byte> plane, const std::vector<Vector2f>& polygon, Byte value);

/// Keeps the plane inside the polygon, by the same spans, and sets everything else to `outside`.
bool FillPolygonMaskKeep(PlaneView<Byte> plane, const std::vector<Vector2f>& polygon, Byte outside);

}  // namespace zellab
