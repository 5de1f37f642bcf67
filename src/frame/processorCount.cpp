#include "frame/processorCount.h"

#include "platform/processorInfo.h"

namespace zellab {

namespace {

/// Replaces the machine's count; 0 where no WorkerCount is alive on the thread.
thread_local int t_workers = 0;

constexpr int kFewestRowsForWorkers = 50;

}  // namespace

int ProcessorCount() {
    return t_workers > 0 ? t_workers : platform::logicalProcessors();
}

int ProcessorCountForRows(int rows) {
    const int processors = ProcessorCount();
    return processors >= 1 && rows >= kFewestRowsForWorkers ? processors : 1;
}

WorkerCount::WorkerCount(int workers) : m_previous(t_workers) {
    t_workers = workers;
}
WorkerCount::~WorkerCount() {
    t_workers = m_previous;
}

}  // namespace zellab
