#pragma once

#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {

/// The least and the largest of a plane around each of its pixels.
struct RadiusBounds {
    Plane<Byte> least, most;
};

/// Within `reach` pixels to every side; beyond the plane its last pixels go on.
RadiusBounds boundsAround(const PlaneView<const Byte>& plane, int reach);

}  // namespace zellab::Bokeh
