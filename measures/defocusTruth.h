#pragma once

#include <vector>

#include "portrait/portrait.h"

/// What a lens would make of a drawn portrait, worked out at full size from its two layers: the background
/// blurred without the person, the person sharp before it.

namespace zelmeasures {

using Rgba = std::vector<unsigned char>;

struct LayeredPortrait {
    zel::Portrait portrait;
    Rgba background;                           // the same scene and noise without the person
    std::vector<unsigned char> disparity;      // of the portrait, larger is nearer
    std::vector<unsigned char> backDisparity;  // of the background alone
};

/// Draws both layers.
LayeredPortrait drawLayers(const zel::PortraitParams& params);

/// The face of a portrait as x, y, width, height, fractions.
struct FaceBox {
    float values[4];
    float centreX() const { return values[0] + values[2] / 2; }
    float centreY() const { return values[1] + values[3] / 2; }
};
FaceBox faceBoxOf(const zel::Portrait& portrait);

/// The picture with the background blurred by discs of the radius that each disparity has at this level of
/// the slider, and the person composited by its true coverage.
Rgba trueDefocus(const LayeredPortrait& layers, int blurLevel);

}  // namespace zelmeasures
