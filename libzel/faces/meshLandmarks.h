#pragma once

#include "libzel/faces/faceFrame.h"
#include "libzel/faces/faceMesh.h"

namespace zel {

/// The library's landmarks on a face whose mesh is known, in the mesh's own pixels. Without irises the pupils
/// are the middles of the eyes' openings.
Landmarks meshLandmarks(const FaceMesh& mesh);

}  // namespace zel
