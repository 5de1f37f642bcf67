#pragma once

#include <vector>

#include "bokeh/noiseTile.h"
#include "bokeh/renderPasses.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {

/// The steps as loops of the processor's own, which draw the shaders' picture within two levels. Needs nothing
/// of OpenGL. The bytes are the same on every processor and on any number of workers.
class ProcessorPasses final : public RenderPasses {
public:
    /// Draws the grain's noise.
    ProcessorPasses();

    bool load(const std::string& resourceDir) override;
    RenderOutcome begin(const ConstImageView& photograph) override;
    RenderOutcome downscale(const ImageView& small) override;
    bool blur(const BlurPass& pass) override;
    void keepSharp() override;
    RenderOutcome compose(const ComposePass& pass, const ImageView& target) override;

private:
    NoiseTile m_noise;
    ConstImageView m_photograph, m_small, m_soft;
    RgbaImage m_blurred;
};

}  // namespace zellab::Bokeh
