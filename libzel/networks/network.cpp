#include "libzel/networks/network.h"

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>

#include "inference/moduleLoader.h"
#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/networkFile.h"
#include "platform/utf8Path.h"

namespace zel {

namespace {

constexpr std::size_t kMostInstances = 4;  // of one network
constexpr std::size_t kMostNetworks = 64;  // that the process keeps
constexpr int kThreads = 1;                // of one run

using ReasonText = std::array<char, 256>;

struct Closer {
    const ZelNetworkModule* module;
    void operator()(ZelNetwork* network) const { module->closeNetwork(network); }
};
using Instance = std::unique_ptr<ZelNetwork, Closer>;

}  // namespace

std::size_t NetworkKind::inputCount() const {
    std::size_t count = 1;
    for (const int size : input) count *= static_cast<std::size_t>(size);
    return count;
}

struct Network::Instances {
    Instances(std::vector<unsigned char> bytes, const NetworkKind& told)
        : file(std::move(bytes)), kind(told) {}

    /// One that no other thread has; waits where too many are at work.
    Instance take() {
        {
            std::unique_lock<std::mutex> lock(mutex);
            freed.wait(lock, [&] { return !waiting.empty() || alive < kMostInstances; });
            if (!waiting.empty()) {
                Instance instance = std::move(waiting.back());
                waiting.pop_back();
                return instance;
            }
            ++alive;
        }
        try {
            return open();
        } catch (...) {
            giveBack(nullptr);
            throw;
        }
    }

    /// @param instance  null: it is no more
    void giveBack(Instance instance) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (instance)
                waiting.push_back(std::move(instance));  // has room: see the constructor of Network
            else
                --alive;
        }
        freed.notify_one();
    }

    Instance open() const {
        std::string absence;
        const ZelNetworkModule* module = zellab::platform::networkModule(absence);
        if (!module) throw NetworkFailure(absence);
        ReasonText reason{};
        Instance instance(module->openNetwork(file.data(), file.size(), reason.data(), reason.size()),
                          {module});
        if (!instance) throw NetworkFailure(std::string(kind.file) + ": " + reason.data());
        return instance;
    }

    const std::vector<unsigned char> file;
    const NetworkKind kind;
    std::mutex mutex;
    std::condition_variable freed;
    std::vector<Instance> waiting;
    std::size_t alive = 0;
};

namespace {

/// Copies of the outputs; nothing where the network gives other ones.
std::vector<std::vector<float>> runOnce(const Instance& instance, const NetworkKind& kind,
                                        const std::vector<float>& input) {
    const std::array<int, 4>& size = kind.input;
    const ZelNetworkArray array{nullptr, 4, {size[0], size[1], size[2], size[3]}, input.data()};
    std::vector<const char*> names;
    for (const NetworkOutput& output : kind.outputs) names.push_back(output.name);
    ZelNetworkOutputs outputs{};
    ReasonText reason{};
    if (!instance.get_deleter().module->runNetwork(instance.get(), &array, names.data(), names.size(),
                                                   kThreads, &outputs, reason.data(), reason.size()))
        throw NetworkFailure(std::string(kind.file) + ": " + reason.data());
    std::vector<std::vector<float>> values;
    for (std::size_t i = 0; i < outputs.count; ++i) {
        const ZelNetworkArray& output = outputs.arrays[i];
        std::size_t count = 1;
        for (int d = 0; d < output.dimCount; ++d) count *= static_cast<std::size_t>(output.dims[d]);
        if (count != kind.outputs[i].count)
            throw NetworkFailure(std::string(kind.file) + ": its output " + kind.outputs[i].name + " has " +
                                 std::to_string(count) + " numbers, not " +
                                 std::to_string(kind.outputs[i].count));
        values.emplace_back(output.data, output.data + count);
    }
    return values;
}

}  // namespace

Network::Network(std::vector<unsigned char> file, const NetworkKind& kind)
    : m_instances(std::make_unique<Instances>(std::move(file), kind)) {
    m_instances->waiting.reserve(kMostInstances);
}

Network::~Network() = default;

std::vector<std::vector<float>> Network::run(const std::vector<float>& input) {
    Instances& instances = *m_instances;
    if (input.size() != instances.kind.inputCount())
        throw NetworkFailure(std::string(instances.kind.file) + ": the input has another size");
    Instance instance = instances.take();
    try {
        auto outputs = runOnce(instance, instances.kind, input);
        instances.giveBack(std::move(instance));
        return outputs;
    } catch (...) {
        instances.giveBack(nullptr);  // who failed is not asked again
        throw;
    }
}

std::shared_ptr<Network> Network::load(const std::string& folder, const NetworkKind& kind,
                                       std::string& reason) {
    struct Known {
        FileStamp stamp;
        std::shared_ptr<Network> network;
        std::string reason;
    };
    static std::mutex mutex;
    // Never taken down: threads may still work when static objects end.
    static auto& known = *new std::map<std::string, Known>;

    const std::string path = (zellab::platform::utf8Path(folder) / kind.file).string();
    const auto stamp = stampOf(path);
    const std::lock_guard<std::mutex> lock(mutex);
    if (const auto found = known.find(path); stamp && found != known.end() && found->second.stamp == *stamp) {
        reason = found->second.reason;
        return found->second.network;
    }
    // What is wrong here may be mended by the next time without a sign on the file.
    auto bytes = readNetwork(path, sumOf(kind.file), reason);
    if (!bytes || !stamp) {
        reason = path + ": " + reason;
        return nullptr;
    }
    if (!zellab::platform::networkModule(reason)) return nullptr;
    Known entry{*stamp, nullptr, {}};
    try {
        std::shared_ptr<Network> network(new Network(std::move(*bytes), kind));
        network->run(std::vector<float>(kind.inputCount(), 0.0f));
        entry.network = std::move(network);
    } catch (const NetworkFailure& failure) {
        entry.reason = folder + "/" + failure.what();
    }
    if (known.size() >= kMostNetworks) known.clear();
    reason = entry.reason;
    return known.insert_or_assign(path, std::move(entry)).first->second.network;
}

}  // namespace zel
