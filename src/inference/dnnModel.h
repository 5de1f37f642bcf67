#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "inference/networkModule.h"

namespace zellab::platform {

/// One output of a run.
struct NetworkMap {
    std::vector<unsigned> dims;  // N, C, H, W
    std::vector<float> values;
};

/// A network in the inference module's hands. For one thread at a time.
class DnnModel {
public:
    /// Null where the module is absent, which is logged, and where it cannot read the file or lacks a layer.
    static std::unique_ptr<DnnModel> load(std::span<const unsigned char> file, std::string inputName,
                                          std::vector<std::string> outputNames);

    /// Runs on a planar input of 1 by 3 by height by width floats, which stays the caller's. The maps come in
    /// the order of the output names; empty where the run failed, or an output is no single map.
    std::vector<NetworkMap> forward(const float* input, int height, int width);

private:
    struct Closer {
        const ZelNetworkModule* module;
        void operator()(ZelNetwork* network) const { module->closeNetwork(network); }
    };
    using Network = std::unique_ptr<ZelNetwork, Closer>;

    DnnModel(Network network, std::string inputName, std::vector<std::string> outputNames);

    const Network m_network;
    const std::string m_inputName;
    const std::vector<std::string> m_outputNames;
};

}  // namespace zellab::platform
