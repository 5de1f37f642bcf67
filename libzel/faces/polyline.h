#pragma once

#include <vector>

#include "zellab/geometry/vector2.h"

namespace zel {

/// Points in a row, joined by straight lines; at least two.
using Polyline = std::vector<zellab::Vector2f>;

/// Where the line first stands above the share `t` of the straight way from its first to its last point.
zellab::Vector2f across(const Polyline& line, float t);

/// The point at the share `t` of the line's length.
zellab::Vector2f along(const Polyline& line, float t);

}  // namespace zel
