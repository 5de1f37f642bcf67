#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Scales by bilinear interpolation from the top left corner of each sample, rows split over workers.
/// Of RGBA pixels the three colours are scaled, and the target's alpha is 255.
///
/// Returns true where something was scaled. False means one of: equal sizes, and the source was copied; a
/// view that is not valid, and the target is as it was.
bool ScaleBilinearThreaded(ConstImageView source, ImageView target);
bool ScaleBilinearThreaded(PlaneView<const Byte> source, PlaneView<Byte> target);

}  // namespace zellab
