#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Warms or cools an RGBA picture by fixed curves, in place.
/// @param strength  limited to 0..1; 0.5 is neutral, 1 applies the warm curves fully, 0 the cool ones
/// @param flag      1 selects gentler curves that also touch green, everything else the usual ones
void ColorTemperatureBlend(ImageView image, float strength, char flag);

/// Moves an RGBA picture towards two-piece curves with knees 103, 138 and 153 at 128 for red, green and blue.
/// @param strength  share of the curve; negative moves away from it
void ToneTableBlend(ImageView image, float strength);

/// The warm twin: knees 153, 138 and 103.
void ToneTableBlendWarm(ImageView image, float strength);

}  // namespace zellab
