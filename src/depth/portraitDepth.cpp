#include "depth/portraitDepth.h"

#include "depth/depthEngine.h"
#include "depth/refineDepth.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

constexpr unsigned kProcessorBackend = 1;
static_assert(kDepthPlaneSide == kDepthSide, "the host's word for the planes' side");

}  // namespace

PortraitDepthPlanes estimatePortraitDepth(DepthEngine& engine, const Byte* rgba, int width, int height,
                                          const Byte* mask, int maskWidth, int maskHeight) {
    const std::size_t samples = sampleCount(kDepthSide, kDepthSide);
    PortraitDepthPlanes planes{false, std::vector<Byte>(samples), std::vector<Byte>(samples),
                               std::vector<Byte>(samples)};
    std::vector<Byte> small(4 * samples);
    if (!scaleArgb({rgba, width, height}, {small.data(), kDepthSide, kDepthSide}, YuvFilter::box))
        return planes;
    planes.estimated = engine.runToPlanes({small.data(), kDepthSide, kDepthSide},
                                          {planes.raw.data(), kDepthSide, kDepthSide},
                                          {planes.confidence.data(), kDepthSide, kDepthSide});
    if (!planes.estimated) return planes;
    // The refinement reads the mask and takes no writable copy of it.
    refine_depth(small.data(), 4, kDepthSide, kDepthSide, const_cast<Byte*>(mask), 1, maskHeight, maskWidth,
                 planes.raw.data(), planes.confidence.data(), planes.refined.data(), kDepthSide, kDepthSide);
    return planes;
}

std::vector<Byte> scaleDepthPlane(const std::vector<Byte>& plane, int fromWidth, int fromHeight, int width,
                                  int height) {
    std::vector<Byte> scaled(sampleCount(width, height));
    if (plane.size() < sampleCount(fromWidth, fromHeight) ||
        !scalePlane({plane.data(), fromWidth, fromHeight}, {scaled.data(), width, height}, YuvFilter::box))
        return {};
    return scaled;
}

PortraitDepth::PortraitDepth() {
    DepthEngine* engine = nullptr;
    CreateDepthEngine(&engine, kProcessorBackend, nullptr);
    m_engine.reset(engine);
}

PortraitDepth::~PortraitDepth() = default;

void PortraitDepth::Deleter::operator()(DepthEngine* engine) const {
    ReleaseDepthEngine(engine);
}

bool PortraitDepth::load(const char* path) {
    return m_engine->LoadModel(path);
}

PortraitDepthPlanes PortraitDepth::estimate(const Byte* rgba, int width, int height, const Byte* mask,
                                            int maskWidth, int maskHeight) {
    return estimatePortraitDepth(*m_engine, rgba, width, height, mask, maskWidth, maskHeight);
}

}  // namespace zellab
