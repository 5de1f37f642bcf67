#include "inference/module/network.h"

#include <memory>
#include <mutex>
#include <opencv2/dnn.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "inference/module/libraryState.h"
#include "inference/module/reasonText.h"
#include "inference/onnxHead.h"

struct ZelNetwork {
    cv::dnn::Net net;
    zellab::platform::OnnxHead head;
    // Of the last run: arrays point into the blobs and at the names.
    std::vector<cv::String> names;
    std::vector<cv::Mat> blobs;
    std::vector<ZelNetworkArray> arrays;
};

namespace zel::module {

namespace {

constexpr int kMostDims = ZEL_NETWORK_MOST_DIMS;

bool isArray(const ZelNetworkArray* input) {
    if (!input || !input->data || input->dimCount < 1 || input->dimCount > kMostDims) return false;
    for (int i = 0; i < input->dimCount; ++i)
        if (input->dims[i] < 1) return false;
    return true;
}

/// The input's name; empty, the library's word for the first one, where it is the only one and was not named.
std::string inputName(const ZelNetwork& network, const ZelNetworkArray& input) {
    if (!input.name && network.head.inputs.size() > 1)
        throw std::invalid_argument("the network has several inputs, and none is named");
    return input.name ? input.name : network.head.inputs.front().name;
}

ZelNetworkArray arrayOf(const cv::Mat& blob, const char* name) {
    if (blob.type() != CV_32F || blob.dims < 1 || blob.dims > kMostDims || !blob.isContinuous())
        throw std::runtime_error("an output is no block of floats of up to four dimensions");
    ZelNetworkArray array{name, blob.dims, {}, blob.ptr<float>()};
    for (int i = 0; i < blob.dims; ++i) array.dims[i] = blob.size[i];
    return array;
}

/// The library makes the lock of its list of layers on first use, without a lock. Here that use is one thread's,
/// before any other's.
void makeLayerList() {
    static std::once_flag made;
    std::call_once(made, [] { cv::dnn::LayerFactory::isLayerRegistered("Convolution"); });
}

}  // namespace

ZelNetwork* openNetwork(const unsigned char* file, size_t size, char* text, size_t textSize) noexcept {
    ReasonText reason(text, textSize);
    return guarded<ZelNetwork*>(reason, nullptr, [&] {
        const QuietLibrary quiet;
        makeLayerList();
        auto head = zellab::platform::readOnnxHead({file, file ? size : 0});
        if (!head) throw std::invalid_argument("is no ONNX network");
        auto network = std::make_unique<ZelNetwork>();
        network->head = std::move(*head);
        network->net = cv::dnn::readNetFromONNX(reinterpret_cast<const char*>(file), size);
        if (network->net.empty()) throw std::invalid_argument("holds no layer");
        network->net.setPreferableBackend(cv::dnn::DNN_BACKEND_OPENCV);
        network->net.setPreferableTarget(cv::dnn::DNN_TARGET_CPU);
        return network.release();
    });
}

int runNetwork(ZelNetwork* network, const ZelNetworkArray* input, const char* const* outputNames,
               size_t outputCount, int threads, ZelNetworkOutputs* outputs, char* text,
               size_t textSize) noexcept {
    ReasonText reason(text, textSize);
    return guarded(reason, 0, [&] {
        if (outputs) *outputs = {};
        if (!network || !outputs || !isArray(input)) throw std::invalid_argument("an argument is missing");
        const QuietLibrary quiet;
        const ThreadCount loops(threads);
        network->arrays.clear();
        network->names.clear();
        network->blobs.clear();
        for (size_t i = 0; i < outputCount; ++i) network->names.emplace_back(outputNames[i]);
        if (outputCount == 0)
            for (const auto& output : network->head.outputs) network->names.push_back(output.name);
        // The library copies its input; the cast only meets its signature.
        network->net.setInput(cv::Mat(input->dimCount, input->dims, CV_32F, const_cast<float*>(input->data)),
                              inputName(*network, *input));
        network->net.forward(network->blobs, network->names);
        for (size_t i = 0; i < network->blobs.size(); ++i)
            network->arrays.push_back(arrayOf(network->blobs[i], network->names[i].c_str()));
        *outputs = {network->arrays.data(), network->arrays.size()};
        return 1;
    });
}

void closeNetwork(ZelNetwork* network) noexcept {
    delete network;
}

}  // namespace zel::module
