#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// Box averages as the downscale pass draws them: each pixel of `target` is the mean of ceil(source / target)
/// samples a pixel apart along either axis, each sample between pixels in straight lines. Alpha becomes 255.
void boxScale(const ConstImageView& source, const ImageView& target);

}  // namespace zellab::Bokeh
