#pragma once

#include "depth/tavioSession.h"

namespace zellab {

/// The depth network on the processor.
class DepthEstimator {
public:
    DepthEstimator() = default;
    /// Takes over a network and its executor.
    DepthEstimator(NetOwner net, ExecutorOwner executor)
        : m_net(std::move(net)), m_executor(std::move(executor)) {}

    /// Makes the network object; false with "Create net Failed!".
    bool Init();

    /// Loads an ONNX network (platform/tavio): one float input of 1, 3, H, W, blue first, 0 to 1; outputs
    /// confidence and depth, or depth alone. A folder stands for the portrait_depth.onnx in it. False with a
    /// line in the log; a network loaded before then stays.
    bool LoadModel(const char* path);

    /// Runs the network on `image`, rows tightly packed. Both buffers hold as many bytes as the network's
    /// outputs have samples. False with a line in the log and the buffers as they were.
    bool run_tavio(ConstImageView image, Byte* outDepth, Byte* outSecond);

    /// The same with the maps in buffers of their own.
    bool runToMaps(ConstImageView image, DepthMaps& maps);

private:
    bool infer(ConstImageView image, DepthMaps& maps);

    int m_interleavedInput = 0;  // 1: the network takes interleaved channels
    NetOwner m_net;
    ExecutorOwner m_executor;  // goes before its network
};

}  // namespace zellab
