#pragma once

#include <memory>

#include "depth/depthEstimator.h"
#include "depth/depthEstimatorGL.h"

namespace zellab {

/// The depth network behind one of two back ends. For one thread at a time.
class DepthEngine {
public:
    static constexpr unsigned kBackendGL = 2;  // anything else: the processor

    /// An estimator that cannot be initialised is dropped; later calls then fail.
    DepthEngine(unsigned backend, void* glContext);

    /// Loads a network; see DepthEstimator::LoadModel.
    bool LoadModel(const char* path);

    /// Runs the network on an image whose rows are packed. Each buffer holds as many bytes as the network's
    /// outputs have samples; nothing is written where the run fails.
    /// @param outDepth   network output 1 as bytes
    /// @param outSecond  network output 0 as bytes
    bool Run(ConstImageView image, Byte* outDepth, Byte* outSecond);

    /// The same for planes of any one size: maps of another size are scaled to it, so that a network of any
    /// size serves. Maps of the planes' size come through as Run gives them.
    bool runToPlanes(ConstImageView image, PlaneView<Byte> depth, PlaneView<Byte> second);

private:
    bool runToMaps(ConstImageView image, DepthMaps& maps);

    const unsigned m_backend;
    std::unique_ptr<DepthEstimator> m_cpuEstimator;
    std::unique_ptr<DepthEstimatorGL> m_glEstimator;
};

/// Makes an engine, which the caller gives back to ReleaseDepthEngine. Always true: whether the back end can
/// work shows in LoadModel.
bool CreateDepthEngine(DepthEngine** out, unsigned backend, void* glContext);

/// Null is fine.
void ReleaseDepthEngine(DepthEngine* engine);

}  // namespace zellab
