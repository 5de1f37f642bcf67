#pragma once

#include <vector>

#include "landmarkModel.h"

namespace zeltrain {

/// Mean face and modes of the training faces and their mirror images.
void learnShape(const std::vector<zel::Landmarks>& faces, zel::LandmarkModel& model);

}  // namespace zeltrain
