#pragma once

#include <string>

#include "portrait/faces.h"
#include "zel/zel.h"

namespace zel {

/// Finds the faces of a picture by the best finder that is to be had here: the networks, where their files lie in
/// the folder of networks, else the built-in one. Says in the log which it was.
/// @param assets  the folder with the assets; empty where there is none
/// @param pixels  four channels, checked
/// Throws DetectorMissing where there is no finder at all.
FaceSet searchFaces(const zel_pixels& pixels, const std::string& assets);

}  // namespace zel
