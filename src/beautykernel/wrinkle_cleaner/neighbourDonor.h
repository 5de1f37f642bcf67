#pragma once

#include "zellab/imageproc/poisson/gradientRepair.h"

namespace zellab {

/// The exchange whose donor is one of the up to eight blocks next to a hole block: among the two or three
/// smoothest, the one with the least edges and hole pixels. A donor that served grows rougher, so that
/// texture is not repeated.
GradientExchange neighbourDonorExchange(int blockSize);

}  // namespace zellab
