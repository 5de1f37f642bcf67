#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Spreads the values of a plane so that the darkest and the brightest 5 in 1000 meet 0 and 255. A plane
/// whose limits meet or cross becomes 255 above the lower one and 0 elsewhere.
void stretchContrast(PlaneView<Byte> plane);

}  // namespace zellab
