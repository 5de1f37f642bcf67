#pragma once

#include <string>

#include "portrait/faces.h"
#include "zel/zel.h"

/// What stands behind a host's list of faces.
struct zel_faces {
    zel::FaceSet set;
    std::string json;  // of the last zel_faces_to_json
};
