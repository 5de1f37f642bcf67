#include "zellab/imageproc/core/parallelRows.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "frame/callSettings.h"
#include "frame/processorCount.h"

namespace zellab {

namespace {

/// The tasks of one call, handed out by one counter.
class TaskRun {
public:
    TaskRun(int count, const std::function<void(int)>& task) : m_count(count), m_task(task) {}

    void work() noexcept {
        for (int i = m_next++; i < m_count; i = m_next++) {
            try {
                m_task(i);
            } catch (...) {
                const std::lock_guard<std::mutex> lock(m_mutex);
                if (!m_error) m_error = std::current_exception();
                m_next = m_count;
            }
        }
    }

    void rethrow() const {
        if (m_error) std::rethrow_exception(m_error);
    }

private:
    const int m_count;
    const std::function<void(int)>& m_task;
    std::atomic<int> m_next{0};
    std::mutex m_mutex;
    std::exception_ptr m_error;
};

/// Threads that are joined on every way out.
class JoinedThreads {
public:
    ~JoinedThreads() {
        for (std::thread& thread : m_threads) thread.join();
    }
    /// Returns whether the thread runs: the system may have no thread left, or no memory for one.
    template <typename Work>
    bool start(const Work& work) {
        try {
            m_threads.reserve(m_threads.size() + 1);
            m_threads.emplace_back(work);
            return true;
        } catch (const std::system_error&) {
            return false;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

private:
    std::vector<std::thread> m_threads;
};

}  // namespace

int runTasks(int count, int workers, const std::function<void(int)>& task) {
    TaskRun run(count, task);
    int missing = 0;
    {
        const CallSettings* const settings = callSettings();
        JoinedThreads threads;
        for (int i = 1; i < std::min(count, workers); ++i)
            if (!threads.start([&run, settings] {
                    const CallScope scope(settings);
                    run.work();
                }))
                ++missing;
        run.work();
    }
    run.rethrow();
    return missing;
}

int rowWorkers(int height) {
    return ProcessorCountForRows(height);
}

}  // namespace zellab
