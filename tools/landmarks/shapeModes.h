#pragma once

#include <vector>

#include "libzel/faces/landmarkModel.h"

namespace zeltrain {

/// Mean of the faces and their mirror images, pupils one unit apart.
zel::Landmarks meanShape(const std::vector<zel::Landmarks>& faces);

/// Mean face and modes of the training faces and their mirror images.
void learnShape(const std::vector<zel::Landmarks>& faces, zel::LandmarkModel& model);

}  // namespace zeltrain
