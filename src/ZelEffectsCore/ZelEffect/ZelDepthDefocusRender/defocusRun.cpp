// The two forms of the render.
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/defocusInternals.h"
#include "bokeh/bokehScene.h"
#include "frame/zel_log.h"
#include "gl/environment.h"
#include "gl/utils.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace DefocusCore {
namespace {

using zellab::Byte;
using zellab::Bokeh::BokehScene;

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
std::vector<Byte> kernelOf(const Byte* rgba, int width, int height) {
    std::vector<Byte> kernel(zellab::sampleCount(width, height));
    for (std::size_t i = 0; i < kernel.size(); ++i) kernel[i] = rgba[4 * i];
    return kernel;
}

/// Renders, and scales where the target has another size.
void renderScene(BokehScene& scene, const RunRequest& request) {
    const zellab::ConstImageView source = request.source;
    const zellab::ImageView target = request.target;
    if (source.width == target.width && source.height == target.height) {
        scene.render(source.data, target.data, source.width, source.height, nullptr);
        return;
    }
    std::vector<Byte> rendered(zellab::sampleCount(source.width, source.height, 4));
    if (scene.render(source.data, rendered.data(), source.width, source.height, nullptr))
        zellab::scaleArgb({rendered.data(), source.width, source.height}, target, zellab::YuvFilter::none);
}

}  // namespace

bool ZelDepthDefocusRender::Run(unsigned char* src, int srcWidth, int srcHeight, unsigned char* dst,
                                int dstWidth, int dstHeight, int faceCount, float* faces, float focusX,
                                float focusY, bool useDepth, int blurLevel, float /*reserved*/,
                                const char* /*reserved*/, bool /*reserved*/, bool useHairMask,
                                bool hasCurrentContext, float /*reserved*/, float intensity, float vivid) {
    constexpr float kAmount = 1.0f, kHighlights = 3.0f, kPreviewResolution = 0.3f;
    return DefocusInternals::run(*this, {{src, srcWidth, srcHeight},
                                         {dst, dstWidth, dstHeight},
                                         faceCount,
                                         faces,
                                         focusX,
                                         focusY,
                                         kPreviewResolution,
                                         blurLevel,
                                         {kAmount, intensity, kHighlights, vivid},
                                         useDepth,
                                         useHairMask,
                                         hasCurrentContext});
}

bool ZelDepthDefocusRender::Run(unsigned char* image, int width, int height, int faceCount, float* faces,
                                float focusX, float focusY, int blurLevel, float highlights, bool useHairMask,
                                bool hasCurrentContext, float amount, float intensity, float vivid) {
    constexpr float kFullResolution = 1.0f;
    constexpr bool kByDepth = true;
    return DefocusInternals::run(*this, {{image, width, height},
                                         {image, width, height},
                                         faceCount,
                                         faces,
                                         focusX,
                                         focusY,
                                         kFullResolution,
                                         blurLevel,
                                         {amount, intensity, highlights, vivid},
                                         kByDepth,
                                         useHairMask,
                                         hasCurrentContext});
}

void DefocusInternals::configure(BokehScene& scene, const ZelDepthDefocusRender& render,
                                 const RunRequest& request) {
    scene.setResolutionFactor(request.resolutionFactor);
    scene.setBlurLevel(request.blurLevel);
    scene.setFaces(request.faceCount, request.faces);
    scene.setFocusPoint(request.focusX, request.focusY);
    scene.setLook(request.look);
    scene.setBokehType(zellab::Bokeh::kStripBokeh);
    scene.setDisparity({render.m_depth, render.m_depthWidth, render.m_depthHeight});
    scene.setSpin(render.m_spin != 0);
    if (request.useHairMask)
        scene.setHairMask({render.m_hairMask, render.m_hairMaskWidth, render.m_hairMaskHeight});
    scene.setConstantRadius(!request.useDepth);
    const std::vector<Byte> kernel = kernelOf(render.m_bokehImage, render.m_bokehWidth, render.m_bokehHeight);
    scene.setKernel({kernel.data(), render.m_bokehWidth, render.m_bokehHeight});
}

bool DefocusInternals::run(ZelDepthDefocusRender& render, const RunRequest& request) {
    if (!request.source.valid() || !request.target.valid()) {
        ZEL_LOG_ERROR("%s(%d) param error.", kRunName, __LINE__);
        return false;
    }
    if (!render.m_bokehImage || render.m_bokehWidth < 1 || render.m_bokehHeight < 1) {
        ZEL_LOG_ERROR("%s(%d) please SetBokehImage fisrt.", kRunName, __LINE__);
        return false;
    }
    if (!request.hasCurrentContext) tryOwnContext();
    bool loaded = false;
    {
        const std::unique_ptr<BokehScene> scene(new (std::nothrow) BokehScene);
        if (!scene) {
            ZEL_LOG_ERROR("ZelDepthDefocusRender: run bokeh is null!");
            return false;
        }
        loaded = scene->create(render.m_resourceDir);
        configure(*scene, render, request);
        renderScene(*scene, request);
    }
    if (!request.hasCurrentContext) zellab::gl::EnvironmentHolder::doneCurrent();
    render.m_spin = 0;
    return loaded;
}

}  // namespace DefocusCore
