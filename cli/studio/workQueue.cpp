#include "cli/studio/workQueue.h"

#include <algorithm>

#include "cli/studio/message.h"

namespace zelcli::studio {

void WorkQueue::Job::requireWanted() const {
    if (m_cancelled) throw Superseded();
}

void WorkQueue::Job::tell(const std::string& stage, double fraction) const {
    const std::lock_guard lock(m_queue.m_mutex);
    m_queue.m_progress = {true, m_lane, stage, fraction};
}

WorkQueue::WorkQueue() : m_worker([this] { serve(); }) {}

WorkQueue::~WorkQueue() {
    end();
    m_worker.join();
}

bool WorkQueue::givesWayTo(Lane older, Lane newer) {
    return newer <= Lane::region && older <= Lane::region && older >= newer;
}

/// What waits is let go at once; what runs ends when it next looks.
void WorkQueue::cancelWhere(const std::function<bool(Lane)>& meant) {
    std::erase_if(m_waiting, [&](Job* job) {
        if (!meant(job->m_lane)) return false;
        job->m_failure = std::make_exception_ptr(Superseded());
        return job->m_done = true;
    });
    if (m_running && meant(m_running->m_lane)) m_running->m_cancelled = true;
    m_changed.notify_all();
}

void WorkQueue::run(Lane lane, const Work& work) {
    Job job(*this, lane);
    job.m_work = &work;
    std::unique_lock lock(m_mutex);
    if (m_ended) throw Superseded();
    cancelWhere([&](Lane older) { return givesWayTo(older, lane); });
    const auto later = std::find_if(m_waiting.begin(), m_waiting.end(),
                                    [&](const Job* other) { return other->m_lane > lane; });
    m_waiting.insert(later, &job);
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return job.m_done; });
    if (job.m_failure) std::rethrow_exception(job.m_failure);
}

Progress WorkQueue::progress() const {
    const std::lock_guard lock(m_mutex);
    return m_progress;
}

std::size_t WorkQueue::waiting() const {
    const std::lock_guard lock(m_mutex);
    return m_waiting.size();
}

void WorkQueue::end() {
    const std::lock_guard lock(m_mutex);
    m_ended = true;
    cancelWhere([](Lane) { return true; });
}

void WorkQueue::serve() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [&] { return m_ended || !m_waiting.empty(); });
        if (m_waiting.empty()) return;
        Job& job = *m_waiting.front();
        m_waiting.pop_front();
        m_running = &job;
        m_progress = {true, job.m_lane, {}, 0};
        lock.unlock();
        try {
            job.requireWanted();
            (*job.m_work)(job);
            job.requireWanted();
        } catch (...) {
            job.m_failure = std::current_exception();
        }
        lock.lock();
        m_running = nullptr;
        m_progress = {};
        job.m_done = true;
        m_changed.notify_all();
    }
}

}  // namespace zelcli::studio
