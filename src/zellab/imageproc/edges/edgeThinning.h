#pragma once

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Finds the ridges of the gradient in rows [begin, end) of `plane`, which is at least 2 by 2: an inner pixel
/// of `ridges` becomes its gradient's magnitude, at most 180, where neither neighbour along the gradient
/// exceeds it and it is at least `least` (1 or more); all others and the border become 0.
void thinGradient(const PlaneView<const Byte>& plane, const PlaneView<Byte>& ridges, int begin, int end,
                  int least, platform::SimdLevel level);

}  // namespace zellab
