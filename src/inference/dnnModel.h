#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zellab::platform {

/// One output of a run.
struct NetworkMap {
    std::vector<unsigned> dims;  // N, C, H, W
    std::vector<float> values;
};

/// A network in the inference library's hands, of which nothing shows here. For one thread at a time.
class DnnModel {
public:
    /// Null where the library cannot read the file or lacks a layer.
    static std::unique_ptr<DnnModel> load(std::span<const unsigned char> file, std::string inputName,
                                          std::vector<std::string> outputNames);
    ~DnnModel();
    DnnModel(const DnnModel&) = delete;
    DnnModel& operator=(const DnnModel&) = delete;

    /// Runs on a planar input of 1 by 3 by height by width floats, which stays the caller's. The maps come in
    /// the order of the output names; empty where the run failed, or an output is no single map.
    std::vector<NetworkMap> forward(const float* input, int height, int width);

private:
    struct Impl;
    explicit DnnModel(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

}  // namespace zellab::platform
