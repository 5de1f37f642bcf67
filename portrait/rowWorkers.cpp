#include "rowWorkers.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace zel::drawing {

void forRowBands(int height, const std::function<void(int, int)>& body) {
    constexpr int kBandRows = 48;
    const int bands = (height + kBandRows - 1) / kBandRows;
    std::atomic<int> next{0};
    std::exception_ptr failure;
    std::mutex failureLock;
    const auto work = [&] {
        try {
            for (int band = next++; band < bands; band = next++)
                body(band * kBandRows, std::min(height, (band + 1) * kBandRows));
        } catch (...) {
            const std::lock_guard<std::mutex> hold(failureLock);
            if (!failure) failure = std::current_exception();
            next = bands;
        }
    };
    const int workers = std::min(bands, static_cast<int>(std::max(1u, std::thread::hardware_concurrency())));
    {
        std::vector<std::jthread> threads;
        try {
            for (int i = 1; i < workers; ++i) threads.emplace_back(work);
        } catch (const std::system_error&) {  // the system has no thread left: the others do the work
        }
        work();
    }
    if (failure) std::rethrow_exception(failure);
}

}  // namespace zel::drawing
