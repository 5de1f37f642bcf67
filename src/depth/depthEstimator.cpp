#include "depth/depthEstimator.h"

#include "depth/depthLog.h"

namespace zellab {

bool DepthEstimator::Init() {
    m_interleavedInput = 0;
    m_net.reset(tavio::Net::CreateNet(nullptr));
    if (!m_net) logDepth("Create net Failed!");
    return m_net != nullptr;
}

bool DepthEstimator::LoadModel(const char* path) {
    logDepth("LoadModel +");
    if (!openNetwork(m_net, path, m_executor)) return false;
    logDepth("Load model: %s", path);
    logDepth("LoadModel -");
    return true;
}

bool DepthEstimator::run_tavio(ConstImageView image, Byte* outDepth, Byte* outSecond) {
    DepthMaps maps;
    return runToMaps(image, maps) && maps.copyTo(outDepth, outSecond);
}

bool DepthEstimator::runToMaps(ConstImageView image, DepthMaps& maps) {
    logDepth("run_tavio +");
    const bool done = infer(image, maps);
    logDepth("run_tavio -");
    return done;
}

bool DepthEstimator::infer(ConstImageView image, DepthMaps& maps) {
    if (!m_net) return false;
    tavio::NetInformation information;
    tavio::InputShape shape;
    m_net->GetNetInformation(information);
    m_net->GetInputShape(0, shape);
    logDepth("Input data type: %d, Input shape: %d x %d x %d x %d", information.inputDataType, shape.n,
             shape.c, shape.h, shape.w);
    if (information.inputDataType != tavio::kDataFloat32) {
        logDepth("Unsupport Input Data Type, %d!", information.inputDataType);
        return false;
    }
    if (!m_executor) return false;  // no model yet: the type above has said so
    const bool interleaved = m_interleavedInput == 1;
    const std::vector<float> data = networkInput(image, shape, interleaved);
    if (data.empty()) return false;
    HostTensor input, output0, output1;
    for (const int size : {shape.n, shape.c, shape.h, shape.w}) input.AddDim(static_cast<unsigned>(size));
    input.ReferenceFromData(data.data());
    if (!m_executor->SetInput(0, input)) logDepth("input doesn't initialized!");
    m_executor->GetOutput(0, output0);
    if (!m_executor->GetOutput(1, output1)) logDepth("output doesn't initialized!");
    if (!m_executor->Run()) {
        logDepth("Tavio Run Failed!");
        return false;
    }
    return readMaps(output0, output1, interleaved, maps);
}

}  // namespace zellab
