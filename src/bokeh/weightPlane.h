#pragma once

#include <cstdint>

#include "bokeh/lookParameters.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {

/// The highlight weight of every pixel of `image`, in sixteenths: 16 counts once.
Plane<std::uint16_t> weightPlane(const ConstImageView& image, const LookValues& look);

}  // namespace zellab::Bokeh
