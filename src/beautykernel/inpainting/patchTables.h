#pragma once

#include <array>
#include <cstdint>

namespace zellab {

/// A step between two cells.
struct CellOffset {
    std::int8_t x, y;
};

/// Where known neighbours are looked for: 99 offsets by rising distance, the cell itself left out.
extern const std::array<CellOffset, 99> kNeighbourOffsets;

/// Cost of a difference of one channel, at index difference + 256: the robust cost log((d / s)^2 + 1) of a
/// Cauchy distribution of width s = 0.117, scaled so that a full difference costs 65535.
const std::array<std::int32_t, 512>& colourCost();

}  // namespace zellab
