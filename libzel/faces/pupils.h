#pragma once

#include "libzel/faces/faceFrame.h"
#include "libzel/faces/lumaPyramid.h"

namespace zel {

/// Where both irises are seen to lie off their landmarks by about the same way, moves both eyes there. Faces
/// on which the fit sits well stay as they are. In pixels of the picture.
void settlePupils(const LumaPyramid& picture, Landmarks& points);

}  // namespace zel
