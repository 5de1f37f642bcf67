#pragma once

#include <vector>

#include "beautykernel/skintools/skinMaskFromColor.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// What the lift of shadows along a curve makes of every weight and sample: entry weight * 256 + sample, the
/// table of mapByPlane.
/// @param skin         mean colour of the skin; its brightness decides how far the middle is raised
/// @param smoothLevel  0..7, limited; 0 lifts nothing
std::vector<Byte> shadowLiftTable(const MeanColour& skin, int smoothLevel);

}  // namespace zellab
