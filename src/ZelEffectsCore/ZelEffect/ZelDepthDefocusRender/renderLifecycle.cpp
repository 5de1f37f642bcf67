// What a render holds between calls: folders, the depth engine, the shape image and the planes.
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/defocusInternals.h"
#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/sharedBlocks.h"
#include "depth/depthEngine.h"
#include "depth/portraitDepth.h"
#include "depth/refineDepth.h"
#include "frame/zel_log.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/imageView.h"

namespace DefocusCore {

ZelDepthDefocusRender::ZelDepthDefocusRender() : m_estimator(new DepthEstimatorHandle) {}

ZelDepthDefocusRender::ZelDepthDefocusRender(const ZelDepthDefocusRender& other)
    : m_resourceDir(other.m_resourceDir),
      m_modelDir(other.m_modelDir),
      m_estimator(other.m_estimator),
      m_hairMask(other.m_hairMask),
      m_hairMaskWidth(other.m_hairMaskWidth),
      m_hairMaskHeight(other.m_hairMaskHeight),
      m_bokehImage(other.m_bokehImage),
      m_bokehWidth(other.m_bokehWidth),
      m_bokehHeight(other.m_bokehHeight),
      m_spin(other.m_spin),
      m_drawsOnProcessor(other.m_drawsOnProcessor),
      m_reserved(other.m_reserved),
      m_depth(other.m_depth),
      m_depthWidth(other.m_depthWidth),
      m_depthHeight(other.m_depthHeight) {
    DefocusInternals::retainParts(*this);
}

ZelDepthDefocusRender& ZelDepthDefocusRender::operator=(const ZelDepthDefocusRender& other) {
    if (this == &other) return *this;
    // What may throw comes first.
    std::string resourceDir = other.m_resourceDir, modelDir = other.m_modelDir;
    DefocusInternals::retainParts(other);
    DefocusInternals::releaseParts(*this);
    m_resourceDir = std::move(resourceDir);
    m_modelDir = std::move(modelDir);
    m_reserved = other.m_reserved;
    m_estimator = other.m_estimator;
    m_hairMask = other.m_hairMask;
    m_hairMaskWidth = other.m_hairMaskWidth;
    m_hairMaskHeight = other.m_hairMaskHeight;
    m_bokehImage = other.m_bokehImage;
    m_bokehWidth = other.m_bokehWidth;
    m_bokehHeight = other.m_bokehHeight;
    m_spin = other.m_spin;
    m_drawsOnProcessor = other.m_drawsOnProcessor;
    m_depth = other.m_depth;
    m_depthWidth = other.m_depthWidth;
    m_depthHeight = other.m_depthHeight;
    return *this;
}

ZelDepthDefocusRender::~ZelDepthDefocusRender() {
    DefocusInternals::releaseParts(*this);
}

void DefocusInternals::retainParts(const ZelDepthDefocusRender& render) {
    retainShared({render.m_estimator, render.m_bokehImage, render.m_depth});
}

void DefocusInternals::releaseParts(ZelDepthDefocusRender& render) {
    freeShared(render.m_depth);
    freeShared(render.m_bokehImage);
    if (!releaseShared(render.m_estimator)) return;
    render.Release();
    delete render.m_estimator;
}

void ZelDepthDefocusRender::setResourcePath(const char* modelDir, const char* resourceDir) {
    m_modelDir = modelDir ? modelDir : "";
    m_resourceDir = resourceDir ? resourceDir : "";
}

bool ZelDepthDefocusRender::Init(bool /*reserved*/) {
    constexpr unsigned kOnTheProcessor = 1;
    if (m_estimator->initialised == 0) {
        zellab::CreateDepthEngine(&m_estimator->engine, kOnTheProcessor, nullptr);
        m_estimator->initialised = 1;
    }
    return m_estimator->engine && m_estimator->engine->LoadModel(m_modelDir.c_str());
}

void ZelDepthDefocusRender::Release() {
    if (m_estimator->initialised == 0) return;
    zellab::ReleaseDepthEngine(m_estimator->engine);
    *m_estimator = {};
}

bool ZelDepthDefocusRender::SetBokehImage(const char* name, unsigned char* rgba, int width, int height) {
    freeShared(m_bokehImage);
    m_bokehImage = nullptr;
    m_bokehWidth = width;
    m_bokehHeight = height;
    if (name && std::strstr(name, "defocus_spin")) m_spin = 1;
    const std::size_t bytes = zellab::sampleCount(width, height, 4);
    if (!rgba || bytes == 0) return false;
    m_bokehImage = static_cast<unsigned char*>(std::malloc(bytes));
    if (m_bokehImage) std::memcpy(m_bokehImage, rgba, bytes);
    return m_bokehImage != nullptr;
}

void ZelDepthDefocusRender::SetHairMaskData(unsigned char* mask, int width, int height) {
    m_hairMask = mask;
    m_hairMaskWidth = width;
    m_hairMaskHeight = height;
}

bool ZelDepthDefocusRender::DepthEstimate(unsigned char* rgba, int width, int height, unsigned char* segMask,
                                          int segWidth, int segHeight) {
    freeShared(m_depth);
    m_depth = nullptr;
    m_depthWidth = m_depthHeight = 0;
    zellab::PortraitDepthPlanes planes;
    const zellab::ConstImageView image(rgba, width, height);
    if (m_estimator->engine && image.valid())
        planes = zellab::estimatePortraitDepth(*m_estimator->engine, image, {segMask, segWidth, segHeight});
    if (!planes.estimated) {  // a plane without an estimate would blur nothing and say nothing
        ZEL_LOG_ERROR("ravel DepthEstimate depthRefine false");
        return false;
    }
    m_depth = static_cast<unsigned char*>(std::malloc(planes.refined.size()));
    if (!m_depth) return false;
    ZEL_LOG_DEBUG("ravel DepthEstimate depthRefine true");
    std::memcpy(m_depth, planes.refined.data(), planes.refined.size());
    m_depthWidth = m_depthHeight = zellab::kDepthSide;
    return true;
}

}  // namespace DefocusCore
