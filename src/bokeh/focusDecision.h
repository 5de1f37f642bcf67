#pragma once

#include <vector>

#include "bokeh/blurStrength.h"
#include "bokeh/focusPoints.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// The band of disparities that stays sharp, both ends included.
struct FocusBand {
    bool onFace = false;  ///< the focus point lies as deep as the faces do
    int lowest = 0;       ///< the far end, 0..255
    int highest = 255;    ///< the near end, 0..255
};

/// Decides what is in focus from the medians of the disparity around the faces and around the focus point,
/// and fits `strength.radiusPerDisparity` to the band.
/// @param disparity  larger is nearer; may be empty
/// @param focus      0..1; counts where it doesn't lie on a face's depth
FocusBand decideFocus(PlaneView<const Byte> disparity, const std::vector<FocusPoint>& faces, FocusPoint focus,
                      BlurStrength& strength);

}  // namespace zellab::Bokeh
