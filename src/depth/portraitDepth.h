#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

class DepthEngine;

/// Side of the planes.
inline constexpr int kDepthPlaneSide = 384;

/// The planes of one estimate, kDepthPlaneSide squared bytes each; larger is nearer, larger is surer.
struct PortraitDepthPlanes {
    PortraitDepthPlanes()
        : raw(kDepthPlaneSide, kDepthPlaneSide),
          confidence(kDepthPlaneSide, kDepthPlaneSide),
          refined(kDepthPlaneSide, kDepthPlaneSide) {}

    bool estimated = false;  // whether the network ran
    Plane<Byte> raw;         // as the network gives it
    Plane<Byte> confidence;
    Plane<Byte> refined;
    Plane<Byte> unmasked;  // refined without the person mask; empty where there was none
};

/// The person mask for the depth that the network gives, or none: who is meant may depend on it.
using PersonMaskOf = std::function<PlaneView<const Byte>(PlaneView<const Byte> raw)>;

/// Estimates and refines the depth of a picture of any size.
/// @param mask  asked once, where the network ran; empty: no mask
/// Rows are tightly packed. The planes of a run that failed hold zeros.
PortraitDepthPlanes estimatePortraitDepth(DepthEngine& engine, ConstImageView image,
                                          const PersonMaskOf& mask);
/// @param mask  person mask, or none
PortraitDepthPlanes estimatePortraitDepth(DepthEngine& engine, ConstImageView image,
                                          PlaneView<const Byte> mask);

/// A plane scaled to width by height: interpolated on the way up, averaged on the way down. Empty for a size
/// outside 1 to 32768.
std::vector<Byte> scaleDepthPlane(PlaneView<const Byte> plane, int width, int height);

/// The engine with the network that it has loaded, on the processor. For programs that want the planes
/// themselves. For one thread at a time.
class PortraitDepth {
public:
    PortraitDepth();
    ~PortraitDepth();
    PortraitDepth(const PortraitDepth&) = delete;
    PortraitDepth& operator=(const PortraitDepth&) = delete;

    /// Loads an ONNX network from a file, or portrait_depth.onnx from a folder.
    bool load(const char* path);
    /// See estimatePortraitDepth; needs a loaded network.
    PortraitDepthPlanes estimate(ConstImageView image, const PersonMaskOf& mask);

private:
    struct Deleter {
        void operator()(DepthEngine* engine) const;
    };
    std::unique_ptr<DepthEngine, Deleter> m_engine;
};

}  // namespace zellab
