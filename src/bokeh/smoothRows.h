#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// The smoothing copy pass: a 3 by 3 binomial whose neighbours count less the more their colour differs. Both
/// pictures are of one size and do not overlap.
void smoothPicture(const ConstImageView& source, const ImageView& target);

}  // namespace zellab::Bokeh
