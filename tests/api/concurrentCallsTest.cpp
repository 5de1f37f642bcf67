// Operations may be called from any thread at the same time, and meet nowhere.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/hostileScene.h"
#include "support/workingFolder.h"

namespace {

using namespace zeltest;

/// The picture after an operation. Scenarios step through their recipes with the round.
Bytes changed(const Operation& operation, int round) {
    constexpr int kWidth = 180, kHeight = 320;
    HostileScene scene(kWidth, kHeight, round);
    DefocusCore::ZelDepthDefocusRender render;
    Call call = scene.call(render);
    operation.run(call);
    return Bytes(call.image, call.image + std::size_t{4} * kWidth * kHeight);
}

TEST(ConcurrentCalls, TwoOfEveryOperationGiveTheBytesOfCallsInTurn) {
    const WorkingFolder assets(ZEL_ASSETS);
    constexpr std::size_t kCount = std::size(kOperations);
    for (const int round : {0, 315}) {  // a good face and strength 0.5
        // The first calls come at once, so that tables which are made at first use are made by several
        // threads.
        std::vector<Bytes> atOnce(2 * kCount);
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < atOnce.size(); ++i)
            threads.emplace_back([&, i] { atOnce[i] = changed(kOperations[i % kCount], round); });
        for (std::thread& thread : threads) thread.join();
        for (std::size_t i = 0; i < kCount; ++i) {
            const Bytes alone = changed(kOperations[i], round);
            if (kOperations[i].drawsOnRand()) continue;
            EXPECT_TRUE(atOnce[i] == alone && atOnce[i + kCount] == alone) << kOperations[i].name;
        }
    }
}

}  // namespace
