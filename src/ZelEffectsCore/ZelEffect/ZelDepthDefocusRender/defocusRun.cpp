// The two forms of the render.
#include <memory>
#include <new>
#include <optional>

#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/defocusInternals.h"
#include "bokeh/bokehScene.h"
#include "frame/zel_log.h"
#include "gl/environment.h"
#include "gl/hostState.h"
#include "gl/utils.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace DefocusCore {
namespace {

using zellab::Byte;
using zellab::ConstImageView;
using zellab::ImageView;
using zellab::Plane;
using zellab::PlaneView;
using zellab::RgbaImage;
using zellab::Bokeh::BackEnd;
using zellab::Bokeh::BokehScene;
using zellab::Bokeh::RenderJob;
using zellab::Bokeh::RenderOutcome;

constexpr char kRunName[] = "DefocusCore::ZelDepthDefocusRender::Run";

/// Without a context of the caller's, one is made and tested, and is gone again when this returns: what is
/// drawn afterwards goes to whatever is current on the thread then. A caller that wants pixels has its own.
void tryOwnContext() {
    const zellab::gl::EnvironmentHolder environment(0, nullptr, true);
    environment.makeCurrent();
    zellab::gl::Utils::initializeGlew();
    if (!zellab::gl::checkGlEnv()) ZEL_LOG_ERROR("check gl env failed !");
}

/// Byte 0 of every pixel of the shape image.
Plane<Byte> kernelOf(ConstImageView shape) {
    Plane<Byte> kernel(shape.width, shape.height);
    for (std::size_t i = 0; i < kernel.size(); ++i) kernel.data()[i] = shape.data[4 * i];
    return kernel;
}

/// Renders, and scales where the target has another size.
RenderOutcome renderScene(BokehScene& scene, RenderJob job) {
    const ConstImageView source = job.source;
    const ImageView target = job.target;
    if (source.width == target.width && source.height == target.height) return scene.render(job);
    RgbaImage rendered(source.width, source.height);
    job.target = rendered.view();
    const RenderOutcome outcome = scene.render(job);
    if (outcome == RenderOutcome::drawn) zellab::scaleArgb(rendered.view(), target, zellab::YuvFilter::none);
    return outcome;
}

/// The host's words for what became of a render have the scene's numbers.
unsigned char numberOf(RenderOutcome outcome) {
    using Outcome = ZelDepthDefocusRender::Outcome;
    static_assert(static_cast<int>(Outcome::drawn) == static_cast<int>(RenderOutcome::drawn) &&
                  static_cast<int>(Outcome::noContext) == static_cast<int>(RenderOutcome::noContext) &&
                  static_cast<int>(Outcome::faultyShaders) ==
                      static_cast<int>(RenderOutcome::faultyShaders) &&
                  static_cast<int>(Outcome::tooLarge) == static_cast<int>(RenderOutcome::tooLarge));
    return static_cast<unsigned char>(outcome);
}

}  // namespace

bool ZelDepthDefocusRender::Run(unsigned char* src, int srcWidth, int srcHeight, unsigned char* dst,
                                int dstWidth, int dstHeight, int faceCount, float* faces, float focusX,
                                float focusY, bool useDepth, int blurLevel, float /*reserved*/,
                                const char* /*reserved*/, bool /*reserved*/, bool useHairMask,
                                bool hasCurrentContext, float /*reserved*/, float intensity, float vivid) {
    constexpr float kAmount = 1.0f, kHighlights = 3.0f, kPreviewResolution = 0.3f;
    return DefocusInternals::run(*this, {.source = {src, srcWidth, srcHeight},
                                         .target = {dst, dstWidth, dstHeight},
                                         .faceCount = faceCount,
                                         .faces = faces,
                                         .focus = {.y = focusY, .x = focusX},
                                         .resolutionFactor = kPreviewResolution,
                                         .blurLevel = blurLevel,
                                         .look = {kAmount, intensity, kHighlights, vivid},
                                         .useDepth = useDepth,
                                         .useHairMask = useHairMask,
                                         .hasCurrentContext = hasCurrentContext});
}

bool ZelDepthDefocusRender::Run(unsigned char* image, int width, int height, int faceCount, float* faces,
                                float focusX, float focusY, int blurLevel, float highlights, bool useHairMask,
                                bool hasCurrentContext, float amount, float intensity, float vivid) {
    return DefocusInternals::run(*this, {.source = {image, width, height},
                                         .target = {image, width, height},
                                         .faceCount = faceCount,
                                         .faces = faces,
                                         .focus = {.y = focusY, .x = focusX},
                                         .resolutionFactor = 1.0f,
                                         .blurLevel = blurLevel,
                                         .look = {amount, intensity, highlights, vivid},
                                         .useDepth = true,
                                         .useHairMask = useHairMask,
                                         .hasCurrentContext = hasCurrentContext});
}

bool DefocusInternals::run(ZelDepthDefocusRender& render, const RunRequest& request) {
    render.m_outcome = 0;
    if (!request.source.valid() || !request.target.valid()) {
        ZEL_LOG_ERROR("%s(%d) param error.", kRunName, __LINE__);
        return false;
    }
    if (!render.m_bokehImage || render.m_bokehWidth < 1 || render.m_bokehHeight < 1) {
        ZEL_LOG_ERROR("%s(%d) please SetBokehImage fisrt.", kRunName, __LINE__);
        return false;
    }
    const bool onProcessor = render.m_drawsOnProcessor != 0;
    if (!request.hasCurrentContext && !onProcessor) tryOwnContext();
    bool loaded = false;
    {
        // Outlives all that the scene has of OpenGL.
        std::optional<zellab::gl::HostState> state;
        if (!onProcessor) state.emplace();
        const std::unique_ptr<BokehScene> scene(
            new (std::nothrow) BokehScene(onProcessor ? BackEnd::processor : BackEnd::openGl));
        if (!scene) {
            ZEL_LOG_ERROR("ZelDepthDefocusRender: run bokeh is null!");
            return false;
        }
        loaded = scene->load(render.m_resourceDir);
        const Plane<Byte> kernel = kernelOf({render.m_bokehImage, render.m_bokehWidth, render.m_bokehHeight});
        PlaneView<const Byte> hairMask;
        if (request.useHairMask)
            hairMask = {render.m_hairMask, render.m_hairMaskWidth, render.m_hairMaskHeight};
        render.m_outcome = numberOf(renderScene(
            *scene, {.source = request.source,
                     .target = request.target,
                     .focusPoints = zellab::Bokeh::focusPointsOfFaces(request.faceCount, request.faces),
                     .focus = request.focus,
                     .resolutionFactor = request.resolutionFactor,
                     .blurLevel = request.blurLevel,
                     .inProportion = request.inProportion,
                     .look = request.look,
                     .type = zellab::Bokeh::kStripBokeh,
                     .spin = render.m_spin != 0,
                     .constantRadius = !request.useDepth,
                     .disparity = {render.m_depth, render.m_depthWidth, render.m_depthHeight},
                     .hairMask = hairMask,
                     .hairHasEdges = request.hairHasEdges,
                     .kernel = kernel.view()}));
    }
    if (!request.hasCurrentContext && !onProcessor) zellab::gl::EnvironmentHolder::doneCurrent();
    render.m_spin = 0;
    return loaded;
}

}  // namespace DefocusCore
