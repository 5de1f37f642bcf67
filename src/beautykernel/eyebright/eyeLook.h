#pragma once

#include "beautykernel/eyebright/eyeTone.h"

namespace zellab {

/// The tuning of one call. The first seven are shares, 1 being all; the last three are the exponent, the
/// scale and the factor of the colour guided filter.
struct EyeTuning {
    float overallGain, bandOffset, reservedShade, highlightGain, whiteGain, darkTolerance, irisGain;
    float filterRadius, filterEps, filterScale;
};

// The steps that change an eye's cut-out, in the order in which they run. Alpha stays.

/// Lightens the ring between the pupil's dark and the iris's rim.
void recolourIrisRing(EyeCut& eye, const EyeTuning& tuning, float ratio);
/// Lifts what is already light in the whites towards a white that warms towards the corners.
void liftWhites(EyeCut& eye, const EyeTuning& tuning, const EyeTone& tone);
/// Steepens the iris's tones, most in its middle.
void contrastIris(EyeCut& eye);
/// Mixes the iris with its guided-filtered copy, most in its middle.
void smoothEye(EyeCut& eye, const EyeTuning& tuning);

}  // namespace zellab
