#pragma once

#include <array>

namespace zellab {

/// Counts of the 256 values of a plane.
using Histogram = std::array<int, 256>;

/// Otsu's bin: the first that parts the values into the two classes of greatest variance between them. 0
/// where all values are one.
int otsuBin(const Histogram& histogram);

/// Between Otsu's bin and the bin that 3 in 100 of the values lie below: what is at or below it is dark. 0
/// for an empty histogram.
int darkThreshold(const Histogram& histogram);

}  // namespace zellab
