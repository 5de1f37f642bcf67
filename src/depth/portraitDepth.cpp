#include "depth/portraitDepth.h"

#include "depth/depthEngine.h"
#include "depth/refineDepth.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

constexpr unsigned kProcessorBackend = 1;
static_assert(kDepthPlaneSide == kDepthSide, "the host's word for the planes' side");

}  // namespace

PortraitDepthPlanes estimatePortraitDepth(DepthEngine& engine, ConstImageView image,
                                          const PersonMaskOf& mask) {
    PortraitDepthPlanes planes;
    RgbaImage small(kDepthSide, kDepthSide);
    if (!scaleArgb(image, small.view(), YuvFilter::box)) return planes;
    planes.estimated = engine.runToPlanes(small.view(), planes.raw.view(), planes.confidence.view());
    if (!planes.estimated) return planes;
    const PlaneView<const Byte> person = mask ? mask(planes.raw.view()) : PlaneView<const Byte>();
    const auto refine = [&](PlaneView<const Byte> by, Plane<Byte>& refined) {
        refine_depth(small.view(), by, planes.raw.view(), planes.confidence.view(), refined.view());
    };
    refine(person, planes.refined);
    if (person.valid()) {
        planes.unmasked = Plane<Byte>(kDepthSide, kDepthSide);
        refine({}, planes.unmasked);
    }
    return planes;
}

PortraitDepthPlanes estimatePortraitDepth(DepthEngine& engine, ConstImageView image,
                                          PlaneView<const Byte> mask) {
    return estimatePortraitDepth(engine, image, [&](PlaneView<const Byte>) { return mask; });
}

std::vector<Byte> scaleDepthPlane(PlaneView<const Byte> plane, int width, int height) {
    std::vector<Byte> scaled(sampleCount(width, height));
    if (!plane.valid() || !scalePlane(plane, {scaled.data(), width, height}, YuvFilter::box)) return {};
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

PortraitDepthPlanes PortraitDepth::estimate(ConstImageView image, const PersonMaskOf& mask) {
    return estimatePortraitDepth(*m_engine, image, mask);
}

}  // namespace zellab
