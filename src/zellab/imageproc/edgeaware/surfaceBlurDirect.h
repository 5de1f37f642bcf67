#pragma once

#include "zellab/imageproc/edgeaware/surfaceBlurParts.h"

namespace zellab::surface {

/// Whether a small disc's pixels may be summed one by one, sixteen centres at once, without a histogram. The
/// sums of the two forms are the same integers. Needs AVX2.
bool fitsDirect(const Disc& disc, const Weights& weights);

/// Filters rows [begin, end).
void blurDirectAvx2(const Job& job, int begin, int end);

}  // namespace zellab::surface
