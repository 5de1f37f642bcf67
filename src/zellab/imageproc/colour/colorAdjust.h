#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Saturation by a luma-preserving matrix, in place on bytes 0 to 2 of an RGBA picture.
/// @param percent  change in percent: 0 is neutral, -100 grey
/// A view that is not valid stays.
void SaturationAdjust(ImageView image, int percent);

/// Lifts (or lowers) the tones by a logarithm, in place on bytes 0 to 2 of an RGBA picture.
/// @param lift  tenths: 25 adds 160 to white before the limit; negative darkens; 0 leaves the picture
/// A view that is not valid stays.
void LogBrightnessAdjust(ImageView image, int lift);

}  // namespace zellab
