#pragma once

#include "libzel/faces/faceDetector.h"
#include "portrait/faces.h"
#include "portrait/image.h"

namespace zel {

/// Finds faces and fits their landmarks; the largest face comes first. Each thread needs a detector of its
/// own.
FaceSet findFaces(const Image& image, FaceDetector& detector);

}  // namespace zel
