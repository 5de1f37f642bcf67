#include "bokeh/glPasses.h"

#include <algorithm>

#include "bokeh/backEnd.h"
#include "bokeh/passes.h"
#include "gl/glApi.h"

namespace zellab::Bokeh {

namespace {

constexpr float kDispersion = 0.0f;  // red and blue stay together

Texture2D byteTexture(int width, int height, int order, const Byte* data) {
    return Texture2D(width, height, order, kTypeByte, data);
}
Texture2D planeTexture(const PlaneView<const Byte>& plane) {
    return plane.valid() ? byteTexture(plane.width, plane.height, kOrderRed, plane.data) : Texture2D();
}

}  // namespace

GlPasses::GlPasses() : m_noise(makeNoiseTexture()) {}

GlPasses::~GlPasses() {
    m_shaders.release();
}

bool GlPasses::load(const std::string& resourceDir) {
    return m_shaders.load(resourceDir);
}

/// The pass functions tell that they did not draw, not why; without an unsound shader it is for want of a
/// texture.
RenderOutcome GlPasses::failure() const {
    return m_shaders.isSound() ? RenderOutcome::tooLarge : RenderOutcome::faultyShaders;
}

RenderOutcome GlPasses::begin(const ConstImageView& photograph) {
    if (!gl::glUsable()) return RenderOutcome::noContext;
    GLint longest = 0;
    gl::glCore().getIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    if (std::max(photograph.width, photograph.height) > longest) return RenderOutcome::tooLarge;
    m_source = photograph;
    return RenderOutcome::drawn;
}

RenderOutcome GlPasses::downscale(const ImageView& small) {
    m_smallPixels = small;
    m_photograph =
        Texture2D(m_source.width, m_source.height, m_source.width, kOrderRgba, kTypeByte, m_source.data);
    m_small = byteTexture(small.width, small.height, kOrderRgba, nullptr);
    if (!m_photograph.isComplete() || !m_small.isComplete()) return RenderOutcome::tooLarge;
    if (!Bokeh::downscale(m_shaders, m_photograph, m_small)) return failure();
    if (!m_small.read(0, 0, small.width, small.height, small.data)) return RenderOutcome::noContext;
    m_soft = byteTexture(small.width, small.height, kOrderRgba, nullptr);
    return RenderOutcome::drawn;
}

void GlPasses::keepSharp() {
    m_soft.write(0, 0, m_smallPixels.width, m_smallPixels.height, m_smallPixels.data);
}

bool GlPasses::blur(const BlurPass& pass) {
    m_kernel = planeTexture(pass.convolution.kernel);
    const int width = m_small.width(), height = m_small.height();
    const Texture2D blurred = byteTexture(width, height, kOrderRgba, nullptr);
    const Texture2D weights(width, height, kOrderRed, kTypeFloat, nullptr);
    if (!ratio(m_shaders, m_small, pass.convolution.look, weights) || !convolve(pass, weights, blurred))
        return false;
    return pass.smooth ? smoothCopy(m_shaders, blurred, m_soft) : copy(m_shaders, blurred, m_soft);
}

bool GlPasses::convolve(const BlurPass& pass, const Texture2D& weights, const Texture2D& blurred) {
    const ConvolutionSource& source = pass.convolution;
    const ConvolutionTextures textures{
        .small = m_small, .kernel = m_kernel, .ratio = weights, .radius = planeTexture(source.radius)};
    if (pass.type == kFreeBokeh)
        return convolveFree(m_shaders, textures, source.look, source.maximumRadius, FreeShape(), blurred);
    if (pass.type != kStripBokeh) return false;
    radial(m_shaders, byteTexture(blurred.width(), blurred.height(), kOrderRed, nullptr));
    return Bokeh::convolve(m_shaders, textures, source, pass.cpuOnly || rendersOnProcessor(), blurred);
}

RenderOutcome GlPasses::compose(const ComposePass& pass, const ImageView& target) {
    const Texture2D out = byteTexture(target.width, target.height, kOrderRgba, nullptr);
    if (!out.isComplete()) return RenderOutcome::tooLarge;
    const Texture2D radius = planeTexture(pass.radius);
    GrainMap grain = grainMap(m_source);
    if (pass.limitGrain) limitGrain(grain);
    const CompositionTextures textures{.soft = m_soft,
                                       .noise = m_noise,
                                       .source = m_photograph,
                                       .radius = radius,
                                       .kernel = m_kernel,
                                       .grain = makeGrainTexture(grain)};
    bool composed =
        Bokeh::compose(m_shaders, textures, kDispersion, pass.scaleRatio, pass.smallBlurRadius, out);
    // Without hair the blend would only copy the picture, which takes a sixth of a render in software.
    if (pass.hair.valid())
        composed = composed && composeHair(m_shaders, out, planeTexture(pass.hair), m_photograph);
    if (!composed || !m_shaders.isSound()) return failure();
    const Texture2D& result = pass.hair.valid() ? m_photograph : out;
    return result.read(0, 0, target.width, target.height, target.data) ? RenderOutcome::drawn
                                                                       : RenderOutcome::noContext;
}

}  // namespace zellab::Bokeh
