#pragma once

#include <array>

#include "bokeh/blurStrength.h"
#include "bokeh/disparityMap.h"
#include "bokeh/focusDecision.h"

namespace zellab::Bokeh {

/// Radii of the blur for each disparity.
struct RadiusTables {
    std::array<Byte, 256> working{};  ///< radius in the working picture, pixels, less the two that stay sharp
    std::array<Byte, 256> full{};     ///< radius in the full picture, pixels
    float largest = 0.0f;             ///< largest radius of the working picture, pixels
};

/// No radius of the working picture passes this; it bounds the work per pixel.
inline constexpr float kLargestWorkingRadius = 30.0f;

/// What differs between the exported render, whose radii are told to the pixel, and the one that blurs pictures of all
/// sizes alike.
struct RadiusRule {
    bool inProportion = false;     ///< see unseenRadius; radii are rounded to the nearest
    float foregroundSlope = 0.2f;  ///< of the blur in front of the band, against that behind it
};

/// Radii that grow with the distance from the band in focus, by default five times as fast or more behind it than in
/// front of it.
RadiusTables radiiByDepth(const DisparityMap& map, const FocusBand& band, const BlurStrength& strength,
                          const RadiusRule& rule = {});

/// The largest of those radii if nothing bounded them, in pixels of the picture.
float largestRadius(const DisparityMap& map, const FocusBand& band, const BlurStrength& strength,
                    const RadiusRule& rule);

/// One radius for every disparity.
RadiusTables constantRadii(const BlurStrength& strength, const RadiusRule& rule = {});

}  // namespace zellab::Bokeh
