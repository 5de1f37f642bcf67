#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/sharedBlocks.h"

#include <gtest/gtest.h>

#include <new>

#include "support/shortMemory.h"

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

// A copy of a render that fails must not leave a hold on what it would have shared.
TEST(SharedBlocks, AreRetainedAllOrNotAtAll) {
    if (!zeltest::kCanStarve) GTEST_SKIP() << "the sanitizers' allocator ends the program";
    const int first = 1, second = 2, third = 3;
    const auto retain = [&] {
        try {
            retainShared({&first, &second, &third});
        } catch (const std::bad_alloc&) {
            if (!releaseShared(&first) || !releaseShared(&second) || !releaseShared(&third)) std::abort();
            throw;
        }
    };
    // Among these sizes is that of the note for one block, and then the second finds no memory.
    for (std::size_t spare = 16; spare <= 96; spare += 16)
        EXPECT_EQ(zeltest::inShortMemory(spare, retain), zeltest::ShortOfMemory::refused) << spare;
}

}  // namespace
