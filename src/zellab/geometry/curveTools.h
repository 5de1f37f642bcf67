#pragma once

#include "zel_effects/zel_records.h"

namespace zellab {

/// Places `samples` points along the polynomial through `count` points, in the frame of their chord: the
/// origin is the first point, the x-axis runs to the last one (a length taken as 0.001 at least), the samples
/// stand at even steps of x from the first point's to the last point's, inclusive.
/// @param points  overwritten by its copy in the chord's frame
/// A closed polyline has no chord: all samples fall on the first point.
void ChordLagrangeResample(Vector2f* points, int count, Vector2f* out, int samples);

/// Cardinal spline through `count` points, its ends doubled: for each segment the samples at
/// k / subdivisions, k = 0 .. subdivisions, so that the joints appear twice.
/// @return the number of samples, (count - 1) * (subdivisions + 1), or 0 for fewer than 4 points; with a null
///         `out` or `points` nothing else happens
int HermiteSpline(Vector2f* out, const Vector2f* points, int count, float tension, int subdivisions);

}  // namespace zellab
