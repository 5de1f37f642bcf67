#include "depth/depthEstimatorGL.h"

#include "depth/depthLog.h"

namespace zellab {

namespace {

/// Options of the network, by the inference layer's numbers, in the order in which it wants them.
constexpr std::pair<tavio::ExtendOptionID, int> kNetOptions[] = {{2, 2},    {801, 1}, {802, -1}, {803, 32},
                                                                 {804, -1}, {805, 2}, {806, 1}};
constexpr tavio::ExtendOptionID kOptionContext = 811;
// Marks of a series of runs: a run, the last run, and what follows the last run.
constexpr tavio::ExtendOptionID kRunOption = 814, kLastRunOption = 815, kAfterLastRunOption = 816;

}  // namespace

bool DepthEstimatorGL::Init(void* glContext) {
    if (!tavio::IsSupport(tavio::kDeviceGpu)) {
        logDepth("This device does not support GPU!");
        return false;
    }
    tavio::ExtendOptions options;
    for (const auto& [id, value] : kNetOptions) options.Add(id, value);
    m_net.reset(tavio::Net::CreateNet(&options));
    if (!m_net) return false;
    m_net->SetOption(kOptionContext, reinterpret_cast<std::intptr_t>(glContext));
    return true;
}

bool DepthEstimatorGL::LoadModel(const char* path, bool) {
    logDepth("LoadModel gl +");
    if (!openNetwork(m_net, path, m_executor)) return false;
    logDepth("LoadModel gl -");
    return true;
}

bool DepthEstimatorGL::run_tavio(ConstImageView image, Byte* outDepth, Byte* outSecond, bool beginRun,
                                 bool endRun) {
    DepthMaps maps;
    return runToMaps(image, beginRun, endRun, maps) && maps.copyTo(outDepth, outSecond);
}

bool DepthEstimatorGL::runToMaps(ConstImageView image, bool beginRun, bool endRun, DepthMaps& maps) {
    logDepth("run_tavio gl +");
    const bool done = infer(image, beginRun, endRun, maps);
    logDepth("run_tavio gl -");
    return done;
}

bool DepthEstimatorGL::infer(ConstImageView image, bool beginRun, bool endRun, DepthMaps& maps) {
    if (!m_net || !m_executor) return false;
    tavio::NetInformation information;
    tavio::InputShape shape;
    m_net->GetNetInformation(information);
    m_net->GetInputShape(0, shape);
    const std::vector<float> data = networkInput(image, shape, false);
    if (data.empty()) return false;
    // The input is made and stays here: a back end that wants it takes it through its own binding.
    HostTensor input, output0, output1;
    for (const int size : {shape.n, shape.c, shape.h, shape.w}) input.AddDim(static_cast<unsigned>(size));
    input.ReferenceFromData(data.data());
    m_executor->GetOutput(0, output0);
    if (!m_executor->GetOutput(1, output1)) logDepth("output doesn't initialized!");
    if (beginRun || endRun) m_executor->SetRunOption(endRun ? kLastRunOption : kRunOption, 0);
    m_executor->Run();  // a failure shows in the outputs
    if (endRun) m_executor->SetRunOption(kAfterLastRunOption, 0);
    return readMaps(output0, output1, false, maps);
}

}  // namespace zellab
