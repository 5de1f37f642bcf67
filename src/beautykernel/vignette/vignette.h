#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// What a vignette looks like. Distances are shares of the way from the picture's centre to its corners.
struct VignetteParams {
    float strength = 0.5f;  // [0, 1]; 0 leaves the picture, 1 makes black what is wholly outside
    float radius = 0.4f;    // [0, 1]; up to here nothing changes
    float softness = 0.6f;  // [0, 1]; from there on to where the whole strength acts; 0 is an edge
    bool valid() const { return in01(strength) && in01(radius) && in01(softness); }

private:
    static bool in01(float value) { return value >= 0.0f && value <= 1.0f; }  // NaN is not
};

/// Darkens towards the corners, in place: bytes 0 to 2 of each pixel times 1 - strength * s, rounded to the nearest.
/// s rises from 0 at `radius` to 1 at `radius + softness`, level at both ends. The distance is measured in an ellipse
/// of the picture's own shape, from the centres of pixels: 1 at the corners, about 0.7 at the middle of each side.
/// Alpha stays. A view or parameters that are not valid change nothing.
void vignette(ImageView image, const VignetteParams& params);

}  // namespace zellab
