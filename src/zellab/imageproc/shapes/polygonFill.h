#pragma once

#include <vector>

#include "zel_effects/zel_records.h"

namespace zellab {

/// Fills a polygon into a plane of width by height bytes with `value`; the points are taken in order and
/// closed. One span a row: from the first inside pixel to the last one that a bisection from there to the
/// right bound reaches, so a concave polygon is filled across its gaps. Points may lie outside the plane.
/// @return false, the plane untouched, for a null plane or an empty polygon; a polygon with a point that is
/// not
///         finite fills nothing and returns true
bool FillPolygonMask(unsigned char* plane, int width, int height, const std::vector<Vector2f>& polygon,
                     unsigned char value);

/// Keeps the plane inside the polygon, by the same spans, and sets everything else to `outside`.
bool FillPolygonMaskKeep(unsigned char* plane, int width, int height, const std::vector<Vector2f>& polygon,
                         unsigned char outside);

}  // namespace zellab
