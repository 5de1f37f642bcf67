#pragma once

#include <vector>

#include "libzel/faces/faceFrame.h"
#include "libzel/faces/lumaPyramid.h"

namespace zel {

/// How a step of the fit looks at the face.
struct Sight {
    float pixelsPerUnit;  // of the upright face; the pupils are one unit apart
    int cell;             // side of a cell, in those pixels
};

/// Landmarks whose surroundings are described, each by kCells x kCells cells of kDirections sums.
constexpr std::size_t kAnchors[] = {0,  1,  2,  4,  6,  8,  10, 11, 13, 15, 17, 21, 24, 25,
                                    26, 19, 67, 70, 71, 72, 65, 29, 31, 35, 33, 75, 77, 81,
                                    79, 37, 46, 38, 54, 45, 64, 58, 62, 63, 55, 59};
constexpr int kCells = 3, kDirections = 8;
constexpr std::size_t kDescriptorSize = std::size(kAnchors) * kCells * kCells * kDirections;

/// Describes the picture about the anchors by the directions in which brightness rises, free of the light's
/// strength. `points` are in the upright frame that `toPicture` leads from.
std::vector<float> describeFace(const LumaPyramid& picture, const Similarity& toPicture,
                                const Landmarks& points, const Sight& sight);

}  // namespace zel
