#include "gimp/run/worker.h"

#include <glib.h>

#include <utility>

namespace zelgimp {

bool TaskVoice::tell(double fraction01, const char* stage) {
    m_fraction = fraction01;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stage = stage;
    return m_cancelled;
}

std::string TaskVoice::stage() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stage;
}

/// One task on its way.
struct Worker::Run {
    Task task;
    TaskVoice voice;
    std::exception_ptr thrown;
};

namespace {

/// Carries a call to the main loop.
void callInMainLoop(std::function<void()> call) {
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean {
            (*static_cast<std::function<void()>*>(data))();
            return G_SOURCE_REMOVE;
        },
        new std::function<void()>(std::move(call)),
        [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
}

}  // namespace

Worker::~Worker() {
    *m_self = nullptr;
    cancel();
    if (m_thread.joinable()) m_thread.join();
}

void Worker::start(Task task) {
    if (!m_running) {
        launch(std::move(task));
        return;
    }
    m_running->voice.cancel();
    m_waiting = std::move(task);
}

void Worker::cancel() {
    m_waiting = {};
    if (m_running) m_running->voice.cancel();
}

const TaskVoice* Worker::voice() const {
    return m_running ? &m_running->voice : nullptr;
}

void Worker::launch(Task task) {
    const auto run = std::make_shared<Run>();
    run->task = std::move(task);
    m_running = run;
    m_thread = std::thread([run, self = m_self] {
        try {
            run->task.work(run->voice);
        } catch (...) {
            run->thrown = std::current_exception();
        }
        callInMainLoop([run, self] {
            if (*self) (*self)->finish(run);
        });
    });
}

void Worker::finish(const std::shared_ptr<Run>& run) {
    m_thread.join();
    m_running = nullptr;
    Task next = std::exchange(m_waiting, {});
    if (next.work)
        launch(std::move(next));
    else if (!run->voice.isCancelled())
        run->task.done(run->thrown);
}

}  // namespace zelgimp
