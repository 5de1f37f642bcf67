#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bokeh/backEnd.h"
#include "bokeh/focusPoints.h"
#include "bokeh/lookParameters.h"
#include "bokeh/renderPasses.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// What one render is asked for. The views and what they show are read while it runs, and no longer.
struct RenderJob {
    ConstImageView source;
    ImageView target;  ///< of the source's size; may be the source itself
    std::vector<FocusPoint> focusPoints;
    FocusPoint focus;               ///< limited to 0..1; NaN counts as the middle
    float resolutionFactor = 1.0f;  ///< below 1 works on a smaller picture; what isn't above 0 counts as 1
    int blurLevel = 20;             ///< 0..100
    bool inProportion =
        false;  ///< the blur is the same share of a picture of any size: previews show what comes
    Look look;
    BokehType type = kStripBokeh;
    bool spin = false;
    bool constantRadius = false;      ///< one radius everywhere, without depth
    bool cpuOnly = false;             ///< all tiles of the convolution on the processor
    PlaneView<const Byte> disparity;  ///< larger is nearer; none: everything lies at 0
    PlaneView<const Byte> hairMask;   ///< hair keeps the sharp picture; no mask: no hair
    bool hairHasEdges = false;        ///< the mask has the picture's edges already, and is taken as it is
    PlaneView<const Byte> kernel;     ///< the shape, by the type; of any size, and scaled to what is read
};

/// One blurred picture from a picture, its disparity and a shape of bokeh. Lives for one render, on the
/// thread whose OpenGL context is current from the constructor to the destructor, if OpenGL draws.
class BokehScene {
public:
    explicit BokehScene(BackEnd backEnd);

    /// Reads what the back end needs from the folder.
    /// @return whether it was read whole; without it a render draws nothing
    bool load(const std::string& resourceDir);

    RenderOutcome render(const RenderJob& job);

private:
    struct Frame;

    RenderOutcome draw(const RenderJob& job);
    static void prepareKernel(Frame& frame);
    static void prepareHair(Frame& frame);
    static void prepareRadii(Frame& frame);
    bool blur(const Frame& frame);

    std::unique_ptr<RenderPasses> m_passes;
};

}  // namespace zellab::Bokeh
