#pragma once

#include <vector>

#include "zel_effects/zel_records.h"

namespace zellab {

/// The convex hull of points, from the least y (the largest x among equals) around by rising angle: a Graham
/// scan by cross products in double precision. Points on an edge stay. Fewer than three different points, or
/// any that is no finite number, are returned as they came.
std::vector<Vector2f> convexHull(const std::vector<Vector2f>& points);

/// The same with angles rounded to single precision and turns truncated to whole numbers, which loses
/// corners of outlines of a few pixels. The skin map's bytes rest on this form.
std::vector<Vector2f> wholeTurnHull(const std::vector<Vector2f>& points);

}  // namespace zellab
