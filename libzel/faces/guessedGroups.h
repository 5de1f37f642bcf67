#pragma once

#include "libzel/faces/colourPyramid.h"
#include "libzel/faces/faceFrame.h"
#include "portrait/faces.h"

namespace zel {

/// How surely each group of a face's landmarks, in pixels of the picture, is a guess: by zel_face_group, 0 to 1. Eyes are
/// placed also where dark glasses or hair lie over them (hair over an eye takes its brow along), and the contour behind
/// the cheek of a face that is turned away. Nose and mouth are never called a guess.
std::array<float, kFaceGroups> guessedGroups(const ColourPyramid& picture, const Landmarks& points);

}  // namespace zel
