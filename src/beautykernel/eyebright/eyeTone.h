#pragma once

#include "beautykernel/eyebright/eyeMasks.h"

namespace zellab {

/// How light an eye is: its white as a level with a spread, and its iris against the whole range and the
/// white.
struct EyeTone {
    int level = 200, spread = 20;
    float ratio = 1.0f;
};

EyeTone estimateEyeTone(const EyeCut& eye);

/// Moves ratios that lie further apart than a tenth to a tenth, around their mean.
void balanceTones(EyeTone& left, EyeTone& right);

}  // namespace zellab
