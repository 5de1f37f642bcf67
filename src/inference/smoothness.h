#pragma once

#include <vector>

namespace zellab::platform {

/// A confidence for a depth map that came without one. Networks err where depth jumps: they know that an edge
/// is near, and not the pixel. So a sample is trusted as far as its neighbourhood is smooth:
/// 1 - min(1, range / 0.25), where range is the largest minus the smallest depth in a window of 7 by 7
/// samples, as a share of the map's whole range. A flat map is trusted everywhere.
std::vector<float> confidenceFromSmoothness(const std::vector<float>& depth, int width, int height);

}  // namespace zellab::platform
