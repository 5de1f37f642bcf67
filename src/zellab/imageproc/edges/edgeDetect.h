#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Finds edges by gradient, thinning and hysteresis: `edges` becomes 255 on edges, 0 elsewhere and on the
/// plane's border. A chain starts where the gradient reaches `high` and goes on while it is at least `low`
/// (swapped if they stand the wrong way round); with `autoThreshold` both come from the picture. `edges` may
/// be `plane` itself. Returns false, `edges` untouched, for a view that is not valid or a side below 2.
bool EdgeDetectCanny(PlaneView<const Byte> plane, PlaneView<Byte> edges, int low, int high,
                     bool autoThreshold);

}  // namespace zellab
