#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "bokeh/cpuTiles.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// What became of a render. All but `drawn` leave the target alone and put one line into the log.
enum class RenderOutcome : std::uint8_t { drawn = 1, noContext, faultyShaders, tooLarge };

/// The two ways of drawing points of light.
enum BokehType : std::int16_t {
    kStripBokeh = 0,  ///< a strip of six frames
    kFreeBokeh = 1,   ///< one kernel of 300 by 300
};

/// Pixels of the photograph up to which its own small blurs serve rather than the working picture's, half of them
/// alone, and from half as many more not at all.
inline constexpr float kSmallBlurRadius = 8.0f;

/// The working picture and how it is blurred.
struct BlurPass {
    ConvolutionSource convolution;  // its kernel in the size of the type; none where there is no such type
    BokehType type = kStripBokeh;
    bool cpuOnly = false;  // no tile of the convolution is OpenGL's
    bool smooth = false;   // smoothed afterwards, where it will be enlarged visibly
};

/// What the finished picture is made from, beside the blurred working picture.
struct ComposePass {
    PlaneView<const Byte> radius;  // of the blur in pixels of the photograph, a byte a working pixel
    float scaleRatio = 1.0f;       // the photograph's pixels across a working pixel
    PlaneView<const Byte> hair;    // of half the photograph's size; none: no hair keeps the photograph
    float smallBlurRadius = kSmallBlurRadius;
    bool limitGrain = false;  // see limitGrain
};

/// The drawing steps of one render, which OpenGL or the processor takes. The scene calls each once, in this
/// order; what a step has drawn is kept for the next.
///
///     begin      the photograph, W x H
///     downscale  the working picture, w x h
///     blur       the working picture blurred; or keepSharp
///     compose    the finished picture
class RenderPasses {
public:
    virtual ~RenderPasses() = default;
    /// What the passes themselves are read from, in the folder of the resources.
    /// @return whether it was read whole
    virtual bool load(const std::string& resourceDir) = 0;
    /// Takes the photograph, which outlives the render. Nothing is drawn yet.
    virtual RenderOutcome begin(const ConstImageView& photograph) = 0;
    /// Box averages of the photograph into `small`, which is of the working size and outlives the passes.
    virtual RenderOutcome downscale(const ImageView& small) = 0;
    /// @return whether it drew
    virtual bool blur(const BlurPass& pass) = 0;
    /// The working picture stands for its own blur.
    virtual void keepSharp() = 0;
    /// Writes the finished picture into `target`, which may be the photograph.
    virtual RenderOutcome compose(const ComposePass& pass, const ImageView& target) = 0;
};

}  // namespace zellab::Bokeh
