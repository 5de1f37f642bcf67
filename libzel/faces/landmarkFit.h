#pragma once

#include "libzel/faces/faceDetector.h"
#include "libzel/faces/faceFrame.h"
#include "libzel/faces/lumaPyramid.h"

namespace zel {

/// Landmarks in pixels of the picture and how far to trust them, 0 to 1.
struct LandmarkFit {
    Landmarks points{};
    float confidence = 0;
};

/// Fits the landmarks to the face that the box surrounds: the mean face is placed in the box from several
/// sides, each moved in steps that were learnt from drawn portraits, and what they agree on is kept.
LandmarkFit fitLandmarks(const LumaPyramid& picture, const FaceBox& box);

}  // namespace zel
