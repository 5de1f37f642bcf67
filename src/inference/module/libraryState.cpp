#include "inference/module/libraryState.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <opencv2/core/utility.hpp>

namespace zel::module {

namespace {

struct {
    std::mutex mutex;
    int alive = 0;
    cv::utils::logging::LogLevel level{};  // the host's
} g_log;

struct {
    std::mutex mutex;
    std::condition_variable free;
    int alive = 0, threads = 0;
    int before = 0;  // the host's
} g_loops;

}  // namespace

QuietLibrary::QuietLibrary() {
    const std::lock_guard<std::mutex> lock(g_log.mutex);
    if (g_log.alive++ == 0)
        g_log.level = cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
}

QuietLibrary::~QuietLibrary() {
    const std::lock_guard<std::mutex> lock(g_log.mutex);
    if (--g_log.alive == 0) cv::utils::logging::setLogLevel(g_log.level);
}

ThreadCount::ThreadCount(int threads) {
    std::unique_lock<std::mutex> lock(g_loops.mutex);
    g_loops.free.wait(lock, [&] { return g_loops.alive == 0 || g_loops.threads == threads; });
    if (g_loops.alive++ > 0) return;
    g_loops.threads = threads;
    if (threads <= 0) return;
    g_loops.before = cv::getNumThreads();
    // Asked for more than it has, the library below complains on the standard error stream.
    cv::setNumThreads(std::min(threads, g_loops.before));
}

ThreadCount::~ThreadCount() {
    const std::lock_guard<std::mutex> lock(g_loops.mutex);
    if (--g_loops.alive > 0) return;
    if (g_loops.threads > 0) cv::setNumThreads(g_loops.before);
    g_loops.free.notify_all();
}

}  // namespace zel::module
