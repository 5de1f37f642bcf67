#include "zellab/imageproc/core/parallelRows.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/noThreads.h"

namespace {

using zellab::parallelRows;
using zellab::runTasks;

TEST(ParallelRows, EveryRowIsVisitedOnceOnAnyWorkerCount) {
    for (int workers : {0, 1, 2, 7})
        for (int height : {-3, 0, 1, 31, 32, 33, 1000}) {
            SCOPED_TRACE(testing::Message() << height << " rows, " << workers << " workers");
            std::vector<std::atomic<int>> visits(static_cast<std::size_t>(height > 0 ? height : 0));
            parallelRows(height, workers, [&](int begin, int end) {
                for (int y = begin; y < end; ++y) ++visits[static_cast<std::size_t>(y)];
            });
            for (const auto& count : visits) ASSERT_EQ(count, 1);
        }
}

TEST(RunTasks, TheFirstExceptionReachesTheCallerAfterAllThreadsEnded) {
    std::atomic<int> running{0};
    const auto task = [&](int i) {
        ++running;
        std::this_thread::yield();
        --running;
        if (i == 5) throw std::runtime_error("band");
    };
    EXPECT_THROW(runTasks(100, 4, task), std::runtime_error);
    EXPECT_EQ(running, 0);
}

TEST(RunTasks, WithoutThreadsTheCallerDoesEveryTask) {
    const zeltest::NoThreads none;
    const std::thread::id caller = std::this_thread::get_id();
    std::vector<int> done(50, 0);
    runTasks(50, 4, [&](int i) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        ++done[static_cast<std::size_t>(i)];
    });
    EXPECT_EQ(done, std::vector<int>(50, 1));
}

}  // namespace
