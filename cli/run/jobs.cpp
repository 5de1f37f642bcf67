#include "cli/run/jobs.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/memoryInfo.h"
#include "platform/processorInfo.h"

namespace zelcli {

JobShare shareJobs(unsigned asked, std::size_t count) {
    constexpr std::size_t kMemoryOfJob = std::size_t{3} << 30;
    const auto processors = static_cast<unsigned>(zellab::platform::logicalProcessors());
    const auto byMemory = static_cast<unsigned>(
        std::clamp<std::size_t>(zellab::platform::physicalMemory() / kMemoryOfJob, 1, processors));
    JobShare share;
    share.jobs = asked > 0 ? asked : std::min(processors, byMemory);
    share.jobs =
        static_cast<unsigned>(std::clamp<std::size_t>(share.jobs, 1, std::max<std::size_t>(count, 1)));
    if (share.jobs > 1) share.threads = static_cast<int>(std::max(1u, processors / share.jobs));
    return share;
}

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
