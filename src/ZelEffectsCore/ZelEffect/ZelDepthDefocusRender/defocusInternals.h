#pragma once

#include "bokeh/focusPoints.h"
#include "bokeh/lookParameters.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {
class DepthEngine;
}  // namespace zellab

namespace DefocusCore {

/// What a render holds its depth engine by; copies of a render share it.
struct DepthEstimatorHandle {
    zellab::DepthEngine* engine = nullptr;
    int initialised = 0;
};

/// One run, in the terms that both of its forms share.
struct RunRequest {
    zellab::ConstImageView source;
    zellab::ImageView target;
    int faceCount;
    float* faces;  // as the host hands them over; only read
    zellab::Bokeh::FocusPoint focus;
    float resolutionFactor;
    int blurLevel;
    zellab::Bokeh::Look look;
    bool useDepth, useHairMask, hasCurrentContext;
    bool hairHasEdges = false;  // the hair mask has the picture's edges already
    bool inProportion = false;  // the blur is the same share of a picture of any size
};

/// The steps of a render that need its members.
struct DefocusInternals {
    /// One more holder of what copies share.
    static void retainParts(const ZelDepthDefocusRender& render);
    /// Gives the shared parts back; the last holder frees them.
    static void releaseParts(ZelDepthDefocusRender& render);
    static bool run(ZelDepthDefocusRender& render, const RunRequest& request);
};

}  // namespace DefocusCore
