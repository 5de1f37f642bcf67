#pragma once

#include <filesystem>
#include <string>

#include "portrait/faces.h"

/// FACES.json: {"image": {"width": W, "height": H}, "faces": [{"rect": [x, y, w, h], "points": [[x, y] x
/// 83]}]}, all numbers as fractions of the picture. A face may tell the "confidence" of its finder, 0 to 1,
/// and which groups of landmarks are "guessed", {"leftEye": 0.9}, above 0 to 1.

namespace zel {

/// Most faces that a file may tell: a picture of the largest size holds no more that an effect could see.
constexpr std::size_t kMostFaces = 1024;

/// Fractions may lie outside the picture (a face at its edge), but not by more than one picture's size.
constexpr double kLeastFraction = -1.0, kLargestFraction = 2.0;

/// Reads and checks face data. Throws Failure with one line that says what is wrong where:
/// "face 0: points: 83 pairs are needed, there are 82".
FaceSet parseFaces(const std::string& json);

std::string formatFaces(const FaceSet& set);

/// The same from and to a file; writing is whole or not at all. Throws Failure.
FaceSet readFaces(const std::filesystem::path& path);
void writeFaces(const std::filesystem::path& path, const FaceSet& set);

}  // namespace zel
