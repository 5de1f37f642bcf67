#pragma once

#include <vector>

#include "libzel/faces/turnedSquare.h"

namespace zel {

/// Windows of one size, which overlap and together see the whole picture.
struct WindowLevel {
    float side = 0;  // pixels of the picture
    std::vector<TurnedSquare> windows;
};

/// How high a face must be, as a share of its window's side, that the detector sees it surely.
constexpr float kLeastInWindow = 0.2f;

/// Where the detector looks, from the largest windows to the smallest. Empty where the picture is too small for a
/// face, or too thin.
/// @param leastFace  height of the smallest face that is looked for, as a share of the picture's shorter side
std::vector<WindowLevel> windowPlan(int width, int height, float leastFace);

}  // namespace zel
