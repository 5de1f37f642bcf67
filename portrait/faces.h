#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "zel_effects/zel_records.h"

namespace zel {

/// Groups of landmarks, in the order of zel_face_group.
inline constexpr std::size_t kFaceGroups = 7;

/// One face as fractions of its picture, as in FACES.json.
struct Face {
    std::array<float, 4> rect{};                // x, y, width, height
    std::array<zellab::Vector2f, 83> points{};  // in the library's landmark order
    std::optional<float> confidence;            // 0 to 1, where the face was found rather than given
    std::array<float, kFaceGroups> guessed{};  // 0 to 1, how surely a group's landmarks stand on nothing seen
};

/// The faces of one picture and the size they were found at.
struct FaceSet {
    int width = 0;
    int height = 0;
    std::vector<Face> faces;
};

}  // namespace zel
