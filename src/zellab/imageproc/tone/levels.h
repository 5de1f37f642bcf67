#pragma once

#include <array>

#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

/// Input black, gamma * 100, input white, output black, output white.
using LevelsParams = std::array<int, 5>;

/// Levels as a table. Entries below input black are 0 and entries from input white on are 255, whatever the
/// output limits are.
void LevelsAdjust(const LevelsParams& params, ByteTable& table);

/// A gamma curve, (i / 255) ^ (1 / gamma), whose foot is eased where gamma is above 1: the pure
/// power rises too steeply at 0. A gamma below 0.001 or NaN leaves the table as it is.
void GammaTable(ByteTable& table, float gamma);

/// The rectangle over which AutoLevels takes its mean: first and last row, first and last column.
struct LevelsRegion {
    int top, bottom, left, right;
};

/// Stretches a picture between its histogram's 0.3 % tails and lifts it where it is dark; in place.
/// Of RGBA pixels bytes 0 to 2 change.
/// @param region  where given, the mean that decides the lift is taken over it, limited to the picture
/// @param mask    none (not valid), or of the picture's size: pixels count where it is 255, and each pixel
///                moves towards its new value by mask / 255
/// A view that is not valid stays.
void AutoLevels(ImageView image, const LevelsRegion* region = nullptr, PlaneView<const Byte> mask = {});
void AutoLevels(PlaneView<Byte> plane, const LevelsRegion* region = nullptr, PlaneView<const Byte> mask = {});

}  // namespace zellab
