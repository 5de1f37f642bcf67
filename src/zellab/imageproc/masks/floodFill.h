#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Sets the zero region around the seed (4-neighbourhood) to 255. The seed is limited to the picture; a
/// non-zero seed changes nothing.
void ScanlineFloodFill(PlaneView<Byte> mask, int seedX, int seedY);

}  // namespace zellab
