#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace zelgimp {

/// What a task tells while it works, from its own thread.
class TaskVoice {
public:
    /// @return whether the task should end, as a Progress does
    bool tell(double fraction01, const char* stage);
    bool isCancelled() const { return m_cancelled; }

    void cancel() { m_cancelled = true; }
    double fraction() const { return m_fraction; }
    std::string stage() const;

private:
    std::atomic<bool> m_cancelled{false};
    std::atomic<double> m_fraction{0};
    mutable std::mutex m_mutex;
    std::string m_stage;
};

/// Does tasks one after the other on a thread beside the window's. Belongs to the thread with the main loop, and calls
/// back on it alone.
class Worker {
public:
    struct Task {
        std::function<void(TaskVoice&)> work;  // on the other thread; may throw
        std::function<void(std::exception_ptr)>
            done;  // here, with what the work threw; not after a cancelled task
    };

    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    /// Waits until the running task has come to the end of its stage.
    ~Worker();

    /// Starts the task, or, while another one runs, cancels that and starts this one behind it; one that waited is
    /// forgotten.
    void start(Task task);
    /// Cancels what runs and forgets what waits.
    void cancel();
    bool isBusy() const { return m_running != nullptr; }
    /// Of the running task; null where none runs.
    const TaskVoice* voice() const;

private:
    struct Run;
    void launch(Task task);
    void finish(const std::shared_ptr<Run>& run);

    std::shared_ptr<Run> m_running;
    std::thread m_thread;
    Task m_waiting;
    std::shared_ptr<Worker*> m_self = std::make_shared<Worker*>(this);  // emptied when this object goes
};

}  // namespace zelgimp
