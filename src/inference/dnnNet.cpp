#include "inference/dnnNet.h"

#include <optional>
#include <string>

#include "inference/onnxHead.h"
#include "platform/fileProbe.h"

namespace tavio {

namespace {

namespace platform = zellab::platform;

/// What a folder's network is called, where a folder is given in place of a file.
constexpr const char* kNameInFolder = "portrait_depth.onnx";

constexpr std::size_t kLargestFile = std::size_t{1} << 30;  // bytes
constexpr std::int64_t kLongestSide = 4096;

/// The bytes of a model file; empty where it cannot be read.
std::vector<unsigned char> readModelFile(const char* path) {
    std::string place(path);
    if (platform::isDirectory(path)) place.append("/").append(kNameInFolder);
    return platform::readRegularFile(place.c_str(), kLargestFile).value_or(std::vector<unsigned char>());
}

/// Whether the network takes one planar picture of three colours and gives one map or two. The number of
/// pictures may be left open.
bool suits(const platform::OnnxHead& head) {
    if (head.inputs.size() != 1 || head.outputs.size() > 2) return false;
    const platform::OnnxValue& input = head.inputs.front();
    const auto& dims = input.dims;
    const auto side = [](std::int64_t size) { return size >= 1 && size <= kLongestSide; };
    return input.elementType > 0 && dims.size() == 4 && (dims[0] == 1 || dims[0] == 0) && dims[1] == 3 &&
           side(dims[2]) && side(dims[3]);
}

}  // namespace

Net* Net::CreateNet(ExtendOptions*) {
    return new DnnNet;
}

void Net::ReleaseNet(Net* net) {
    delete net;
}

bool DnnNet::LoadFile(const char* path, int) {
    if (!path) return false;
    const std::vector<unsigned char> file = readModelFile(path);
    const std::optional<platform::OnnxHead> head = platform::readOnnxHead(file);
    if (!head || !suits(*head)) return false;
    const platform::OnnxValue& input = head->inputs.front();
    std::shared_ptr<platform::DnnModel> model;
    if (input.elementType == kDataFloat32) {
        std::vector<std::string> outputs;
        for (const platform::OnnxValue& output : head->outputs) outputs.push_back(output.name);
        model = platform::DnnModel::load(file, input.name, std::move(outputs));
        if (!model) return false;
    }
    m_model = std::move(model);
    m_dataType = input.elementType;
    m_height = static_cast<int>(input.dims[2]);
    m_width = static_cast<int>(input.dims[3]);
    return true;
}

bool DnnNet::GetNetInformation(NetInformation& information) const {
    information.inputDataType = m_dataType;
    return loaded();
}

bool DnnNet::GetInputShape(int index, InputShape& shape) const {
    if (index != 0 || !loaded()) return false;
    shape.n = 1;
    shape.c = 3;
    shape.h = m_height;
    shape.w = m_width;
    return true;
}

void DnnNet::SetOption(ExtendOptionID, std::intptr_t) {}  // none is known to this back end

}  // namespace tavio
