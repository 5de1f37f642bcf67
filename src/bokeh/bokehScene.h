#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bokeh/focusPoints.h"
#include "bokeh/lookParameters.h"
#include "gl/shaderCache.h"
#include "gl/texture2D.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// The two ways of drawing points of light.
enum BokehType : std::int16_t {
    kStripBokeh = 0,  ///< a strip of six frames, shared between both processors
    kFreeBokeh = 1,   ///< one kernel of 300 by 300, on the graphics processor alone
};

/// What one render is asked for. The views and what they show are read while it runs, and no longer.
struct RenderJob {
    ConstImageView source;
    ImageView target;  ///< of the source's size; may be the source itself
    std::vector<FocusPoint> focusPoints;
    FocusPoint focus;               ///< limited to 0..1; NaN counts as the middle
    float resolutionFactor = 1.0f;  ///< below 1 works on a smaller picture; what isn't above 0 counts as 1
    int blurLevel = 20;             ///< 0..100
    Look look;
    BokehType type = kStripBokeh;
    bool spin = false;
    bool constantRadius = false;      ///< one radius everywhere, without depth
    bool cpuOnly = false;             ///< all tiles of the convolution on the processor
    PlaneView<const Byte> disparity;  ///< larger is nearer; none: everything lies at 0
    PlaneView<const Byte> hairMask;   ///< hair keeps the sharp picture; no mask: no hair
    PlaneView<const Byte> kernel;     ///< the shape, by the type; of any size, and scaled to what is read
};

/// What became of a render. All but `drawn` leave the target alone and put one line into the log.
enum class RenderOutcome : std::uint8_t { drawn = 1, noContext, faultyShaders, tooLarge };

/// One blurred picture from a picture, its disparity and a shape of bokeh. Lives for one render, on the
/// thread whose OpenGL context is current from create() to the destructor.
class BokehScene {
public:
    BokehScene();
    /// Releases the programs first, then the textures.
    ~BokehScene();
    BokehScene(const BokehScene&) = delete;
    BokehScene& operator=(const BokehScene&) = delete;

    /// Loads the shader file of the folder and draws the noise.
    /// @return whether the shader file was read whole; without it a render draws nothing
    bool create(const std::string& resourceDir);

    RenderOutcome render(const RenderJob& job);

private:
    struct Frame;

    RenderOutcome draw(const RenderJob& job);
    static void prepareKernel(Frame& frame);
    static void prepareHair(Frame& frame);
    static void prepareRadii(Frame& frame);
    bool convolve(Frame& frame);
    bool convolveByType(const Frame& frame, const Texture2D& weights, const LookValues& look,
                        const Texture2D& blur);

    ShaderCache m_shaders;
    Texture2D m_noise;
};

}  // namespace zellab::Bokeh
