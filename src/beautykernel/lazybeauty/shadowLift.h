#pragma once

#include "beautykernel/skintools/shadowPlane.h"
#include "beautykernel/skintools/skinMaskFromColor.h"

namespace zellab {

/// What the lift of shadows along a curve makes of every sample by the weight of the shadow.
/// @param skin         mean colour of the skin; its brightness decides how far the middle is raised
/// @param smoothLevel  0..7, limited; 0 lifts nothing
WeightTables shadowLiftTables(const MeanColour& skin, int smoothLevel);

}  // namespace zellab
