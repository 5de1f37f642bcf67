#include "frame/processorCount.h"

#include "frame/callSettings.h"
#include "platform/processorInfo.h"

namespace zellab {

namespace {

/// Replaces the machine's count; 0 where no WorkerCount is alive on the thread.
thread_local int t_workers = 0;

constexpr int kFewestRowsForWorkers = 50;

}  // namespace

int ProcessorCount() {
    if (t_workers > 0) return t_workers;
    const CallSettings* const settings = callSettings();
    return settings && settings->workers > 0 ? settings->workers : platform::logicalProcessors();
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
