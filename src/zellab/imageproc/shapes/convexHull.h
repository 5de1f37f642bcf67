#pragma once

#include <vector>

#include "zel_effects/zel_records.h"

namespace zellab {

/// The convex hull of points, from the lowest-lying y (the largest x among equals) around by rising angle: a
/// Graham scan whose turns are judged on whole numbers. Fewer than three different points are returned as
/// they came.
std::vector<Vector2f> convexHull(const std::vector<Vector2f>& points);

}  // namespace zellab
