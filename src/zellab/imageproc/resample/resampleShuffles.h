#pragma once

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/resample/resamplePhases.h"

/// Row filters that read a block of outputs by one load and one shuffle: for pictures that grow, or shrink to
/// no less than about half. They need AVX2.

namespace zellab {

/// Samples are taken as signed, 128 lower, where bytes are multiplied: the product wants one unsigned factor,
/// and a share of 128 fits no signed byte. Adding this gives back the 128 and rounds.
inline constexpr short kSignedRound = 128 * kPhases + kPhases / 2;

/// Plans the blocks of a plane, eight outputs each. Returns false where outputs lie too far apart.
bool planShuffledPlane(AxisFilter& filter);
void horizontalShuffledPlane(const Byte* row, const AxisFilter& filter, std::size_t count, Byte* out);

/// The same for four-byte pixels and filters of two taps, two outputs a block.
bool planShuffledPixels(AxisFilter& filter);
void horizontalShuffledPixels(const Byte* row, const AxisFilter& filter, std::size_t count, Byte* out);

}  // namespace zellab
