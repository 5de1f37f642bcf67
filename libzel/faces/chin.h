#pragma once

#include "libzel/faces/faceFrame.h"
#include "libzel/faces/lumaPyramid.h"

namespace zel {

/// Raises a chin that lies below the shadow under the jaw, and the lower contour with it. For fits that are
/// not sure of themselves: on short chins they take the neck for a part of the face. In pixels of the
/// picture.
void settleChin(const LumaPyramid& picture, Landmarks& points);

}  // namespace zel
