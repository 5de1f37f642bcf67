#include "inference/dnnModel.h"

#include <utility>

#include "frame/zel_log.h"
#include "inference/moduleLoader.h"

namespace zellab::platform {

namespace {

constexpr int kAsTheModuleLikes = 0;  // threads

/// The map behind an output of 1, 1, H, W, or of fewer dimensions with H and W last. No dimensions: no map.
NetworkMap mapOf(const ZelNetworkArray& output) {
    NetworkMap map;
    if (output.dimCount < 2) return map;
    for (int i = 0; i < output.dimCount - 2; ++i)
        if (output.dims[i] != 1) return map;
    const auto height = static_cast<unsigned>(output.dims[output.dimCount - 2]);
    const auto width = static_cast<unsigned>(output.dims[output.dimCount - 1]);
    map.dims = {1, 1, height, width};
    map.values.assign(output.data, output.data + std::size_t{height} * width);
    return map;
}

}  // namespace

DnnModel::DnnModel(Network network, std::string inputName, std::vector<std::string> outputNames)
    : m_network(std::move(network)),
      m_inputName(std::move(inputName)),
      m_outputNames(std::move(outputNames)) {}

std::unique_ptr<DnnModel> DnnModel::load(std::span<const unsigned char> file, std::string inputName,
                                         std::vector<std::string> outputNames) {
    std::string absence;
    const ZelNetworkModule* module = networkModule(absence);
    if (!module) {
        ZEL_LOG_ERROR("%s", absence.c_str());
        return nullptr;
    }
    Network network(module->openNetwork(file.data(), file.size(), nullptr, 0), {module});
    if (!network) return nullptr;
    return std::unique_ptr<DnnModel>(
        new DnnModel(std::move(network), std::move(inputName), std::move(outputNames)));
}

std::vector<NetworkMap> DnnModel::forward(const float* input, int height, int width) {
    const ZelNetworkArray array{m_inputName.c_str(), 4, {1, 3, height, width}, input};
    std::vector<const char*> names;
    for (const std::string& name : m_outputNames) names.push_back(name.c_str());
    ZelNetworkOutputs outputs{};
    std::vector<NetworkMap> maps;
    if (!m_network.get_deleter().module->runNetwork(m_network.get(), &array, names.data(), names.size(),
                                                    kAsTheModuleLikes, &outputs, nullptr, 0))
        return maps;  // shapes that do not meet
    for (std::size_t i = 0; i < outputs.count; ++i) {
        maps.push_back(mapOf(outputs.arrays[i]));
        if (maps.back().dims.empty()) return {};
    }
    return maps;
}

}  // namespace zellab::platform
