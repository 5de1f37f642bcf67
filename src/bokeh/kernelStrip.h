#pragma once

#include "zellab/imageproc/core/imageView.h"

/// The shape of a bokeh kernel image: six square frames side by side in one plane, the first for points of
/// light at the picture's centre, the last for those at its corner.

namespace zellab::Bokeh {

inline constexpr int kFrameSide = 176;  // pixels
inline constexpr int kFrames = 6;
inline constexpr int kStripWidth = kFrames * kFrameSide, kStripHeight = kFrameSide;

/// Share of a frame's side that kernels are taken from; the rim around it gives rotated shapes room.
inline constexpr float kUsedShare = 0.6875f;

/// Radii of kernels, in working pixels: a kernel of radius r is 2 r + 1 square.
inline constexpr int kMaxRadius = 30;
inline constexpr int kRadii = kMaxRadius + 1;

/// A record of the spinning kernels is a rotation by record div 6 times 18 degrees of frame record mod 6.
inline constexpr int kRotations = 20;
inline constexpr int kRecords = kRotations * kFrames;
inline constexpr float kRotationStepDegrees = 18.0f;

/// Window on a kernel strip; holds one if valid() and of the right size.
using StripView = PlaneView<const Byte>;
inline bool isKernelStrip(const StripView& strip) {
    return strip.valid() && strip.width == kStripWidth && strip.height == kStripHeight;
}

/// Radians of a rotation index, in the steps that the shaders' table takes.
constexpr float rotationAngle(int rotation) {
    return static_cast<float>(rotation) * kRotationStepDegrees / 180.0f * 3.1415927f;
}

}  // namespace zellab::Bokeh
