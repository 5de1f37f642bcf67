#pragma once

namespace zellab {

/// Saturation by a luma-preserving matrix, in place on bytes 0 to 2 of an RGBA picture.
/// @param percent  change in percent: 0 is neutral, -100 grey
/// Nothing happens for a null picture or a side below 1.
void SaturationAdjust(unsigned char* rgba, int width, int height, int percent);

/// Lifts (or lowers) the tones by a logarithm, in place on bytes 0 to 2 of an RGBA picture.
/// @param lift  tenths: 25 adds 160 to white before the limit; negative darkens; 0 leaves the picture
/// Nothing happens for a null picture or a side below 1.
void LogBrightnessAdjust(unsigned char* rgba, int width, int height, int lift);

}  // namespace zellab
