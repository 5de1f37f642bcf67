#pragma once

#include "libzel/faces/faceFrame.h"
#include "portrait/faces.h"

namespace zel {

/// A face whose landmarks were found, in pixels of a picture of that size, as fractions of it. Its rectangle runs
/// from contour to contour and from the chin to above the brows, as much again as from the eyes to them.
Face foundFace(const Landmarks& points, int width, int height, float confidence);

/// The middle between the pupils.
zellab::Vector2f pupilMiddle(const Landmarks& points);

}  // namespace zel
