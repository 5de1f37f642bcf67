#pragma once

#include <gtest/gtest.h>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"

namespace zeltest {

/// Runs `operation` (which returns its result) on one worker at the baseline, then on several counts and
/// both levels, and expects the same result each time.
template <typename Operation>
void expectSameOnEveryWorkerCountAndLevel(const Operation& operation) {
    using zellab::platform::SimdLevel;
    const auto runAt = [&](int workers, SimdLevel level) {
        const zellab::WorkerCount count(workers);
        const zellab::platform::SimdLimit limit(level);
        return operation();
    };
    const auto expected = runAt(1, SimdLevel::baseline);
    for (int workers : {1, 2, 3, 8})
        for (SimdLevel level : {SimdLevel::baseline, SimdLevel::avx2}) {
            SCOPED_TRACE(testing::Message() << workers << " workers, level " << static_cast<int>(level));
            EXPECT_TRUE(runAt(workers, level) == expected);
        }
}

}  // namespace zeltest
