#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "depth/portraitDepth.h"

namespace zel {

/// Loaded depth networks of a context. Loading costs as much as running, and one network serves one thread at a
/// time, so those that no call uses wait here.
class DepthPool {
public:
    using Network = std::unique_ptr<zellab::PortraitDepth>;

    /// One that is loaded from the file already; null where none waits.
    Network take(const std::string& file) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = std::find_if(m_waiting.begin(), m_waiting.end(),
                                        [&](const auto& waiting) { return waiting.first == file; });
        if (found == m_waiting.end()) return nullptr;
        Network network = std::move(found->second);
        m_waiting.erase(found);
        return network;
    }

    void giveBack(const std::string& file, Network network) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_waiting.size() < kMost) m_waiting.emplace_back(file, std::move(network));
    }

private:
    static constexpr std::size_t kMost = 8;

    std::mutex m_mutex;
    std::vector<std::pair<std::string, Network>> m_waiting;
};

}  // namespace zel
