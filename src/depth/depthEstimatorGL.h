#pragma once

#include "depth/tavioSession.h"

namespace zellab {

/// The depth network on the graphics processor, for a back end that has one: the network takes its input
/// through a binding of its own, so no input is handed to the executor here.
class DepthEstimatorGL {
public:
    DepthEstimatorGL() = default;
    /// Takes over a network and its executor.
    DepthEstimatorGL(NetOwner net, ExecutorOwner executor)
        : m_net(std::move(net)), m_executor(std::move(executor)) {}

    /// False with "This device does not support GPU!" or where there is no network object.
    bool Init(void* glContext);

    /// As DepthEstimator::LoadModel. @param reserved not read.
    bool LoadModel(const char* path, bool reserved);

    /// As DepthEstimator::run_tavio. The flags mark the first and the last run of a series.
    bool run_tavio(ConstImageView image, Byte* outDepth, Byte* outSecond, bool beginRun, bool endRun);

    /// The same with the maps in buffers of their own.
    bool runToMaps(ConstImageView image, bool beginRun, bool endRun, DepthMaps& maps);

private:
    bool infer(ConstImageView image, bool beginRun, bool endRun, DepthMaps& maps);

    NetOwner m_net;
    ExecutorOwner m_executor;  // goes before its network
};

}  // namespace zellab
