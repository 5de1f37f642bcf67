#pragma once

#include "beautykernel/eyebright/eyeGeometry.h"

namespace zellab {

/// What is known of an eye before its iris is: all in pixels of the cut-out.
struct IrisSeed {
    float x, y;    // the pupil's landmark
    float length;  // from corner to corner
    float gap;     // between the middles of the lids
};

/// Finds the circle between iris and white near the seed, in pixels of the cut-out; the radius is whole.
/// The result has radius 0 where nothing looks like an iris, or the eye is closed.
Iris findIris(ConstImageView cutOut, const IrisSeed& seed);

}  // namespace zellab
