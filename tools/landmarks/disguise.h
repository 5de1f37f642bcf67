#pragma once

#include <random>
#include <vector>

#include "libzel/faces/faceFrame.h"

namespace zeltrain {

/// A grey picture under the brush.
struct Canvas {
    std::vector<unsigned char> luma;
    int width = 0, height = 0;
};

/// Puts on a face what the drawn people never wear and the photographed often do: glasses, hats, deep lines,
/// blotchy skin, things held before the face. Which, and how much of it, is left to chance.
void disguise(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random);

float uniform(std::mt19937& random, float low, float high);

}  // namespace zeltrain
