#pragma once

#include <memory>
#include <vector>

namespace zellab {

class DepthEngine;

/// Side of the planes.
inline constexpr int kDepthPlaneSide = 384;

/// The planes of one estimate, kDepthPlaneSide squared bytes each; larger is nearer, larger is surer.
struct PortraitDepthPlanes {
    bool estimated = false;          // whether the network ran
    std::vector<unsigned char> raw;  // as the network gives it
    std::vector<unsigned char> confidence;
    std::vector<unsigned char> refined;
};

/// Estimates and refines the depth of an RGBA picture of any size, rows tightly packed.
/// @param mask  person mask of one byte a pixel, or null
/// The planes of a run that failed hold zeros.
PortraitDepthPlanes estimatePortraitDepth(DepthEngine& engine, const unsigned char* rgba, int width,
                                          int height, const unsigned char* mask, int maskWidth,
                                          int maskHeight);

/// A plane of `from` scaled to width by height: interpolated on the way up, averaged on the way down. Empty
/// for a size outside 1 to 32768.
std::vector<unsigned char> scaleDepthPlane(const std::vector<unsigned char>& plane, int fromWidth,
                                           int fromHeight, int width, int height);

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
    PortraitDepthPlanes estimate(const unsigned char* rgba, int width, int height, const unsigned char* mask,
                                 int maskWidth, int maskHeight);

private:
    struct Deleter {
        void operator()(DepthEngine* engine) const;
    };
    std::unique_ptr<DepthEngine, Deleter> m_engine;
};

}  // namespace zellab
