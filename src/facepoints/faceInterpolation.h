#pragma once

#include "zel_effects/zel_records.h"

namespace zellab {

/// Derives the dense list of a face from its landmarks; docs/face-points.md tells what each position is.
/// @param landmarks  83 points in pixels, in the order of ImageCoreFaceInfo
/// @param out        receives 310 points
/// @return the number of points, always 310
///
/// The list follows a shift, turn, scale or mirror image of the landmarks. Landmarks that coincide give a
/// finite list; ones that are not numbers or infinite give such points.
int interpolateFace(const Vector2f* landmarks, Vector2f* out);

}  // namespace zellab
