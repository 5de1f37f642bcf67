#pragma once

#include <vector>

#include "beautykernel/eyebright/eyeGeometry.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Where a pixel of the cut-out lies between the lids: -1 to 1 from left to right and from top to bottom, and
/// how much is left of 1 after the fourth power of each.
struct LidCoords {
    float ex = 0.0f, ey = 0.0f, falloffX = 0.0f, falloffY = 0.0f;
};

/// One eye cut out of the picture, with the planes that every step is weighed by. All planes have the
/// cut-out's size and are 0 outside the lids.
struct EyeCut {
    EyeBox box;
    RgbaImage rgba;            // empty where there is no eye to work on
    Plane<float> lidShape;     // 1 in the middle of the opening, falling to 0 at the lids
    Plane<float> irisRadial;   // square of the distance from the iris's centre, 1 on its rim
    Plane<float> eyeRadial;    // square of the distance from the lids' middle, 1 at half the eye's diagonal
    Plane<float> lidDistance;  // distance to the lids, 1 from kFullDistance pixels on
    Plane<LidCoords> lidCoords;

    static constexpr float kFullDistance = 12.0f;

    bool exists() const { return rgba.size() > 0; }
    ImageView pixels() { return rgba.view(); }
    ConstImageView pixels() const { return rgba.view(); }
};

/// Copies the eye's box out of the picture. Without an iris, or a box, there is nothing to work on.
EyeCut cutEye(ConstImageView picture, const EyeLids& lids, const Iris& iris);

/// Fills the planes.
void buildEyeMasks(EyeCut& eye, const EyeLids& lids, const Iris& iris);

}  // namespace zellab
