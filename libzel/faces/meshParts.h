#pragma once

#include <span>

namespace zel {

/// Points of the mesh that a refining network places anew, in the order of its output. An eye's take in its brow.
extern const std::span<const short> kMeshLips, kMeshLeftEye, kMeshRightEye;

/// The face's edge, from the middle of the forehead round by the picture's right.
extern const std::span<const short> kMeshOutline;

}  // namespace zel
