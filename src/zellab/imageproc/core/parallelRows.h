#pragma once

#include <algorithm>
#include <functional>

namespace zellab {

/// Calls task(i) for every i in [0, count), perhaps at once, on at most `workers` threads, the caller's
/// among them. Threads live for this one call: they are started and joined here. Those that cannot be started
/// are done without, since the others take the tasks; returns how many that were. The first exception that
/// a task throws is rethrown on the caller's thread after all have ended; the tasks not yet begun are
/// then left out. The caller's CallSettings hold on all of them.
int runTasks(int count, int workers, const std::function<void(int)>& task);

/// Worker count of parallelRows for a picture of that height: ProcessorCountForRows.
int rowWorkers(int height);

/// Calls body(yBegin, yEnd) on disjoint bands that cover [0, height), perhaps at once, on at most `workers`
/// threads. The split depends on the height alone, never on the number of threads, so that a body that keeps
/// one partial result per band gives the same bits on every machine. Returns as runTasks.
template <typename Body>
int parallelRows(int height, int workers, const Body& body) {
    constexpr int kBandRows = 32;
    const int bands = height > 0 ? (height - 1) / kBandRows + 1 : 0;
    return runTasks(bands, workers, [&](int band) {
        const int begin = band * kBandRows;
        body(begin, begin + std::min(height - begin, kBandRows));
    });
}

template <typename Body>
int parallelRows(int height, const Body& body) {
    return parallelRows(height, rowWorkers(height), body);
}

}  // namespace zellab
