#pragma once

#include <vector>

namespace zellab::Bokeh {

/// A place to keep in focus, as fractions of the picture.
struct FocusPoint {
    float y = 0.5f, x = 0.5f;
};

/// At most this many faces are kept in focus.
inline constexpr int kMostFocusPoints = 10;

/// The centres of the faces that are large enough to matter, at most ten; where there is none, the centre of
/// the largest of the small ones. `faces` holds count records of x, y, width, height as fractions.
std::vector<FocusPoint> focusPointsOfFaces(int count, const float* faces);

}  // namespace zellab::Bokeh
