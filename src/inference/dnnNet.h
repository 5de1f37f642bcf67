#pragma once

#include <array>
#include <memory>

#include "inference/dnnModel.h"
#include "inference/tavio.h"

namespace tavio {

/// A network that the inference library for ONNX runs.
class DnnNet : public Net {
public:
    bool LoadFile(const char* path, int reserved) override;
    bool GetNetInformation(NetInformation& information) const override;
    bool GetInputShape(int index, InputShape& shape) const override;
    void SetOption(ExtendOptionID id, std::intptr_t value) override;

    bool loaded() const { return m_dataType != 0; }
    int dataType() const { return m_dataType; }
    /// Null for a network whose input is no float: it can be asked about, and not be run.
    const std::shared_ptr<zellab::platform::DnnModel>& model() const { return m_model; }

private:
    std::shared_ptr<zellab::platform::DnnModel> m_model;
    int m_dataType = 0;
    int m_height = 0, m_width = 0;
};

/// Shares the network's model; the network may load another one meanwhile.
class DnnExecutor : public Executor {
public:
    explicit DnnExecutor(const DnnNet& net);
    bool SetInput(int index, const Tensor& input) override;
    bool GetOutput(int index, Tensor& output) override;
    bool Run() override;
    void SetRunOption(ExtendOptionID id, int value) override;

private:
    static constexpr std::size_t kOutputs = 2;  // confidence, depth

    std::shared_ptr<zellab::platform::DnnModel> m_model;
    InputShape m_shape;
    const float* m_input = nullptr;
    std::array<Tensor*, kOutputs> m_outputs{};
};

}  // namespace tavio
