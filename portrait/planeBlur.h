#pragma once

#include <vector>

namespace zel::drawing {

/// Softens a plane of width * height samples in place, nearly like a Gaussian of deviation `radius`: three
/// box passes each way. The border's samples go on beyond it. Rows and columns are shared out over threads.
void softenPlane(std::vector<float>& plane, int width, int height, int radius);

}  // namespace zel::drawing
