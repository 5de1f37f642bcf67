#pragma once

#include "bokeh/renderPasses.h"
#include "gl/shaderCache.h"
#include "gl/texture2D.h"

namespace zellab::Bokeh {

/// The steps drawn by shaders, on the thread whose OpenGL context is current from the constructor to the
/// destructor.
class GlPasses final : public RenderPasses {
public:
    /// Draws the grain's noise.
    GlPasses();
    /// Releases the programs first, then the textures.
    ~GlPasses() override;
    GlPasses(const GlPasses&) = delete;
    GlPasses& operator=(const GlPasses&) = delete;

    bool load(const std::string& resourceDir) override;
    RenderOutcome begin(const ConstImageView& photograph) override;
    RenderOutcome downscale(const ImageView& small) override;
    bool blur(const BlurPass& pass) override;
    void keepSharp() override;
    RenderOutcome compose(const ComposePass& pass, const ImageView& target) override;

private:
    RenderOutcome failure() const;
    bool convolve(const BlurPass& pass, const Texture2D& weights, const Texture2D& blurred);

    ShaderCache m_shaders;
    Texture2D m_noise;
    ConstImageView m_source, m_smallPixels;
    Texture2D m_photograph, m_small, m_soft, m_kernel;
};

}  // namespace zellab::Bokeh
