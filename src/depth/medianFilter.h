#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Replaces each sample by the value at which the histogram of its window, counted from 0, first holds
/// window * window / 2 + 1 samples (255 if never, as under an even window). A border of (window - 1) / 2
/// samples stays. In place; a plane that no window fits into stays as it is.
void MedianFilterPlane(PlaneView<Byte> plane, int window);

}  // namespace zellab
