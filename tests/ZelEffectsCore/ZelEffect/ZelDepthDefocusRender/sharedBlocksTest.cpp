#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/sharedBlocks.h"

#include <gtest/gtest.h>

#include <new>

#include "support/starvation.h"

namespace {

using DefocusCore::releaseShared;
using DefocusCore::retainShared;

TEST(SharedBlocks, TheLastReleaseOfEachIsTold) {
    const int first = 1, second = 2;
    retainShared({&first, nullptr, &second});
    retainShared({&first});
    EXPECT_FALSE(releaseShared(&first));
    EXPECT_FALSE(releaseShared(&first));
    EXPECT_TRUE(releaseShared(&first));
    EXPECT_FALSE(releaseShared(&second));
    EXPECT_TRUE(releaseShared(&second));
}

/// Ends with 1 where there was memory for all of it, with 0 where there was not and nobody holds anything.
[[noreturn]] void retainStarved(std::size_t spare) {
    const int first = 1, second = 2, third = 3;
    zeltest::starve(spare);
    try {
        retainShared({&first, &second, &third});
    } catch (const std::bad_alloc&) {
        std::_Exit(releaseShared(&first) && releaseShared(&second) && releaseShared(&third) ? 0 : 2);
    }
    std::_Exit(1);
}

// A copy of a render that fails must not leave a hold on what it would have shared.
TEST(SharedBlocks, AreRetainedAllOrNotAtAll) {
    if (!zeltest::kCanStarve) GTEST_SKIP() << "the sanitizers' allocator ends the program";
    // Among these sizes is that of the note for one block, and then the second finds no memory.
    for (std::size_t spare = 16; spare <= 96; spare += 16)
        EXPECT_EXIT(retainStarved(spare), testing::ExitedWithCode(0), "") << spare;
}

}  // namespace
