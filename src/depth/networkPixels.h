#pragma once

#include <cstddef>

#include "zellab/imageproc/core/imageView.h"

/// Pixels to the network's floats and back.

namespace zellab {

/// Bytes 0 to 2 of each pixel over 255 into three planes in the order blue, green, red. Rows are packed.
void pixelsToPlanes(ConstImageView image, float* planes);

/// The same with the three values at the start of each group of `groupLength` floats.
void pixelsToGroups(ConstImageView image, float* groups, int groupLength);

/// A map of `samples` floats as bytes: (v - minimum) / (maximum - minimum) * 255, truncated. The search for
/// the limits starts from 10 and -1: a map that lies wholly above 10 keeps the minimum 10. Where the
/// arithmetic gives no number (a constant map above all) the byte is 0. False where `out` is null.
bool mapToBytes(const float* map, std::size_t samples, Byte* out);

/// Values in the order of rows, columns, channels into planes, one a channel.
void groupsToPlanes(const float* groups, std::size_t channels, std::size_t pixels, float* planes);

}  // namespace zellab
