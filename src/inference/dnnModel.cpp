#include "inference/dnnModel.h"

#include <mutex>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/dnn.hpp>

namespace zellab::platform {

namespace {

/// Keeps the library's own lines off the standard streams while it lives. The level is one for the process:
/// the first guard remembers the host's setting and the last one restores it.
class QuietLibrary {
public:
    QuietLibrary() {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (s_alive++ == 0) s_level = cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    }
    ~QuietLibrary() {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (--s_alive == 0) cv::utils::logging::setLogLevel(s_level);
    }
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;

private:
    static inline std::mutex s_mutex;
    static inline int s_alive = 0;
    static inline cv::utils::logging::LogLevel s_level{};
};

/// The map behind an output of 1, 1, H, W, or of fewer dimensions with H and W last. No dimensions: no map.
NetworkMap mapOf(const cv::Mat& output) {
    NetworkMap map;
    if (output.type() != CV_32F || output.dims < 2 || output.dims > 4 || !output.isContinuous()) return map;
    for (int i = 0; i < output.dims - 2; ++i)
        if (output.size[i] != 1) return map;
    const int height = output.size[output.dims - 2], width = output.size[output.dims - 1];
    map.dims = {1, 1, static_cast<unsigned>(height), static_cast<unsigned>(width)};
    const auto* values = output.ptr<float>();
    map.values.assign(values, values + output.total());
    return map;
}

}  // namespace

struct DnnModel::Impl {
    cv::dnn::Net net;
    std::string inputName;
    std::vector<cv::String> outputNames;
};

DnnModel::DnnModel(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
DnnModel::~DnnModel() = default;

std::unique_ptr<DnnModel> DnnModel::load(std::span<const unsigned char> file, std::string inputName,
                                         std::vector<std::string> outputNames) {
    const QuietLibrary quiet;
    try {
        auto impl = std::make_unique<Impl>();
        impl->net = cv::dnn::readNetFromONNX(reinterpret_cast<const char*>(file.data()), file.size());
        if (impl->net.empty()) return nullptr;
        impl->net.setPreferableBackend(cv::dnn::DNN_BACKEND_OPENCV);
        impl->net.setPreferableTarget(cv::dnn::DNN_TARGET_CPU);
        impl->inputName = std::move(inputName);
        impl->outputNames = std::move(outputNames);
        return std::unique_ptr<DnnModel>(new DnnModel(std::move(impl)));
    } catch (const std::exception&) {  // the importer throws on whatever it does not know
        return nullptr;
    }
}

std::vector<NetworkMap> DnnModel::forward(const float* input, int height, int width) {
    const QuietLibrary quiet;
    std::vector<NetworkMap> maps;
    try {
        const int sizes[] = {1, 3, height, width};
        // The library copies its input; the cast only meets its signature.
        m_impl->net.setInput(cv::Mat(4, sizes, CV_32F, const_cast<float*>(input)), m_impl->inputName);
        std::vector<cv::Mat> outputs;
        m_impl->net.forward(outputs, m_impl->outputNames);
        for (const cv::Mat& output : outputs) {
            maps.push_back(mapOf(output));
            if (maps.back().dims.empty()) return {};
        }
    } catch (const std::exception&) {  // shapes that do not meet
        return {};
    }
    return maps;
}

}  // namespace zellab::platform
