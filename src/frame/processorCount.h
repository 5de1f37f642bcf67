#pragma once

namespace zellab {

/// Number of logical processors; the worker count of the pixel primitives.
/// The settings of the call that this thread works for replace it, and a WorkerCount alive on the thread both.
int ProcessorCount();

/// The worker count for a job of that many rows: below 50 rows a thread costs more than it saves.
int ProcessorCountForRows(int rows);

/// While alive, calls on this thread see this many processors, more than the machine has if asked so.
/// For tests and measurements: no result depends on the number of workers, and this is how that is shown.
class WorkerCount {
public:
    explicit WorkerCount(int workers);
    ~WorkerCount();
    WorkerCount(const WorkerCount&) = delete;
    WorkerCount& operator=(const WorkerCount&) = delete;

private:
    int m_previous;
};

}  // namespace zellab
