#include "frame/processorCount.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <thread>

namespace {

TEST(ProcessorCount, FewRowsGetOneWorker) {
    const zellab::WorkerCount four(4);
    for (int rows : {-1, 0, 1, 49}) EXPECT_EQ(zellab::ProcessorCountForRows(rows), 1) << rows;
    for (int rows : {50, 51, 100000}) EXPECT_EQ(zellab::ProcessorCountForRows(rows), 4) << rows;
}

TEST(ProcessorCount, FollowsTheProcessorsThatTheProcessMayUse) {
    int bound = 0;
    std::thread([&] {
        cpu_set_t all, one;
        sched_getaffinity(0, sizeof all, &all);
        CPU_ZERO(&one);
        for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu)
            if (CPU_ISSET(cpu, &all)) {
                CPU_SET(cpu, &one);
                break;
            }
        sched_setaffinity(0, sizeof one, &one);
        bound = zellab::ProcessorCount();
    }).join();
    EXPECT_EQ(bound, 1);
    EXPECT_GE(zellab::ProcessorCount(), 1);
}

TEST(ProcessorCount, AnOverrideEndsWithItsObjectAndStaysOnItsThread) {
    const int machine = zellab::ProcessorCount();
    {
        const zellab::WorkerCount three(machine + 3);
        {
            const zellab::WorkerCount seven(machine + 7);
            EXPECT_EQ(zellab::ProcessorCount(), machine + 7);
        }
        EXPECT_EQ(zellab::ProcessorCount(), machine + 3);
        int elsewhere = 0;
        std::thread([&] { elsewhere = zellab::ProcessorCount(); }).join();
        EXPECT_EQ(elsewhere, machine);
    }
    EXPECT_EQ(zellab::ProcessorCount(), machine);
}

}  // namespace
