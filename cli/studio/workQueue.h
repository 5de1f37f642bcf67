#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace zelcli::studio {

/// What a piece of work is for, the most urgent first.
enum class Lane {
    preview,  // the picture at screen size; a newer one takes the place of an older
    region,   // a part of the picture at full size; likewise, and a preview goes before it
    task,     // opening, faces, depth, saving: each is finished
    batch,    // one picture of a batch
    thumbnail
};

/// What the worker is at.
struct Progress {
    bool busy = false;
    Lane lane = Lane::task;
    std::string stage;
    double fraction = 0;
};

/// One worker: whatever touches pictures runs on its thread, one piece after the other.
class WorkQueue {
public:
    /// What a piece of work is handed: whether it should end, and where it tells how far it is.
    class Job {
    public:
        bool cancelled() const { return m_cancelled; }
        /// Throws Superseded.
        void requireWanted() const;
        void tell(const std::string& stage, double fraction) const;

    private:
        friend class WorkQueue;
        Job(WorkQueue& queue, Lane lane) : m_queue(queue), m_lane(lane) {}
        WorkQueue& m_queue;
        const Lane m_lane;
        std::atomic<bool> m_cancelled{false};
        const std::function<void(const Job&)>* m_work = nullptr;
        bool m_done = false;
        std::exception_ptr m_failure;
    };
    using Work = std::function<void(const Job&)>;

    WorkQueue();
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    /// Runs the work on the worker and waits for it. Passes on what it throws; throws Superseded where a newer
    /// piece took its place before it was done, or the queue ends.
    void run(Lane lane, const Work& work);

    Progress progress() const;
    /// How many pieces of work have not begun.
    std::size_t waiting() const;

    /// Cancels what waits and what runs; later work is not begun.
    void end();

private:
    void serve();
    void cancelWhere(const std::function<bool(Lane)>& meant);
    static bool givesWayTo(Lane older, Lane newer);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::list<Job*> m_waiting;
    Job* m_running = nullptr;
    Progress m_progress;
    bool m_ended = false;
    std::thread m_worker;
};

}  // namespace zelcli::studio
