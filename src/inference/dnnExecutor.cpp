#include <algorithm>

#include "inference/dnnNet.h"
#include "inference/smoothness.h"

namespace tavio {

Executor* Executor::CreateExecutor(Net* net, ExtendOptions*) {
    const auto* dnnNet = dynamic_cast<const DnnNet*>(net);
    return dnnNet && dnnNet->loaded() ? new DnnExecutor(*dnnNet) : nullptr;
}

void Executor::ReleaseExecutor(Executor* executor) {
    delete executor;
}

DnnExecutor::DnnExecutor(const DnnNet& net) : m_model(net.model()) {
    net.GetInputShape(0, m_shape);
}

bool DnnExecutor::SetInput(int index, const Tensor& input) {
    const int sizes[] = {m_shape.n, m_shape.c, m_shape.h, m_shape.w};
    bool fits = index == 0 && input.Data();
    for (unsigned i = 0; i < 4; ++i) fits = fits && input.GetDim(i) == static_cast<unsigned>(sizes[i]);
    m_input = fits ? static_cast<const float*>(input.Data()) : nullptr;
    return fits;
}

bool DnnExecutor::GetOutput(int index, Tensor& output) {
    if (index < 0 || static_cast<std::size_t>(index) >= kOutputs) return false;
    m_outputs[static_cast<std::size_t>(index)] = &output;
    return true;
}

bool DnnExecutor::Run() {
    std::vector<zellab::platform::NetworkMap> maps;
    if (m_model && m_input) maps = m_model->forward(m_input, m_shape.h, m_shape.w);
    const std::array<Tensor*, kOutputs> outputs = std::exchange(m_outputs, {});
    m_input = nullptr;
    if (maps.empty()) return false;
    if (maps.size() == 1) {  // depth alone
        const auto& depth = maps.front();
        zellab::platform::NetworkMap confidence{
            depth.dims, zellab::platform::confidenceFromSmoothness(
                            depth.values, static_cast<int>(depth.dims[3]), static_cast<int>(depth.dims[2]))};
        maps.insert(maps.begin(), std::move(confidence));
    }
    for (std::size_t i = 0; i < kOutputs; ++i)
        if (outputs[i]) outputs[i]->Adopt(std::move(maps[i].dims), std::move(maps[i].values));
    return true;
}

void DnnExecutor::SetRunOption(ExtendOptionID, int) {}  // none is known to this back end

}  // namespace tavio
