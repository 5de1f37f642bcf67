#include "cli/run/jobs.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace zelcli {

void runJobs(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    const auto worker = [&]() noexcept {
        for (std::size_t i; (i = next.fetch_add(1)) < count;) work(i);
    };
    const std::size_t helpers = std::min<std::size_t>(jobs, count);
    std::vector<std::jthread> threads;
    try {
        for (std::size_t i = 1; i < helpers; ++i) threads.emplace_back(worker);
    } catch (const std::system_error&) {
        // Fewer threads than asked for: the work gets done all the same.
    }
    worker();
}

}  // namespace zelcli
