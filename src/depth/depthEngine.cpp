#include "depth/depthEngine.h"

#include "depth/depthLog.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

bool mapToPlane(const std::vector<Byte>& map, const DepthMaps& maps, PlaneView<Byte> plane) {
    return scalePlane({map.data(), maps.width, maps.height}, plane, YuvFilter::bilinear);
}

}  // namespace

DepthEngine::DepthEngine(unsigned backend, void* glContext) : m_backend(backend) {
    if (backend == kBackendGL) {
        m_glEstimator = std::make_unique<DepthEstimatorGL>();
        if (!m_glEstimator->Init(glContext)) m_glEstimator.reset();
    } else {
        m_cpuEstimator = std::make_unique<DepthEstimator>();
        if (!m_cpuEstimator->Init()) m_cpuEstimator.reset();
    }
}

bool DepthEngine::LoadModel(const char* path) {
    if (m_backend == kBackendGL) return m_glEstimator && m_glEstimator->LoadModel(path, true);
    return m_cpuEstimator && m_cpuEstimator->LoadModel(path);
}

bool DepthEngine::Run(ConstImageView image, Byte* outDepth, Byte* outSecond) {
    if (m_backend == kBackendGL)
        return m_glEstimator && m_glEstimator->run_tavio(image, outDepth, outSecond, true, true);
    return m_cpuEstimator && m_cpuEstimator->run_tavio(image, outDepth, outSecond);
}

bool DepthEngine::runToMaps(ConstImageView image, DepthMaps& maps) {
    if (m_backend == kBackendGL) return m_glEstimator && m_glEstimator->runToMaps(image, true, true, maps);
    return m_cpuEstimator && m_cpuEstimator->runToMaps(image, maps);
}

bool DepthEngine::runToPlanes(ConstImageView image, PlaneView<Byte> depth, PlaneView<Byte> second) {
    const auto packed = [](const PlaneView<Byte>& plane) {
        return plane.valid() && plane.stride == plane.width;
    };
    const bool packedImage = image.stride == std::ptrdiff_t{ConstImageView::kChannels} * image.width;
    DepthMaps maps;
    return packedImage && packed(depth) && packed(second) && runToMaps(image, maps) &&
           mapToPlane(maps.second, maps, second) && mapToPlane(maps.depth, maps, depth);
}

bool CreateDepthEngine(DepthEngine** out, unsigned backend, void* glContext) {
    logDepth("This is version 1.1.0.0");
    if (out) *out = new DepthEngine(backend, glContext);
    return true;
}

void ReleaseDepthEngine(DepthEngine* engine) {
    delete engine;
}

}  // namespace zellab
