#pragma once

#include <vector>

#include "bokeh/blurStrength.h"
#include "bokeh/disparityMap.h"
#include "bokeh/focusPoints.h"

namespace zellab::Bokeh {

/// The band of disparities that stays sharp, both ends included.
struct FocusBand {
    bool onFace = false;  ///< the focus point lies as deep as the faces do
    int lowest = 0;       ///< the far end, 0..255
    int highest = 255;    ///< the near end, 0..255
};

/// The near end of the band that is sharp with a face of that disparity.
float nearestSharp(int disparity);

/// Decides what is in focus from the medians of the disparity around the faces and around the focus point,
/// and fits `strength.radiusPerDisparity` to the band.
/// @param disparity  as the host gave it, in its own size: the working picture's size, which the resolution
///                   of the render decides, must not move the focus; may be empty
/// @param focus      0..1; counts where it doesn't lie on a face's depth
FocusBand decideFocus(const DisparityMap& disparity, const std::vector<FocusPoint>& faces, FocusPoint focus,
                      BlurStrength& strength);

}  // namespace zellab::Bokeh
