#pragma once

#include "zellab/imageproc/poisson/gradientRepair.h"

namespace zellab {

/// The exchange whose donor is the least rough block of the 5 by 5 around a hole block that has not served
/// yet; edges count as rough. A hole block without a quieter neighbour lends to itself.
GradientExchange quietDonorExchange(int blockSize);

}  // namespace zellab
