// Every operation of the library gives the same bytes on one worker without and on several with the fast
// instruction sets.
#include <gtest/gtest.h>

#include <cstdlib>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "support/hostileScene.h"
#include "support/workingFolder.h"

namespace {

using namespace zeltest;
using zellab::platform::SimdLevel;

class EveryMachine : public testing::TestWithParam<Operation> {};

TEST_P(EveryMachine, GivesTheSameBytes) {
    constexpr int kWidth = 270, kHeight = 480;
    constexpr std::size_t kBytes = std::size_t{4} * kWidth * kHeight;
    const WithAssets assets;
    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath("depth", "bokeh");
    ASSERT_TRUE(render.Init(false));
    bool didSomething = false;
    for (const int round : {0, 126, 315}) {  // a good face, all buffers, strength 0.5
        if (round % GetParam().every != 0) continue;
        const auto result = [&](int workers, SimdLevel level) {
            const zellab::WorkerCount count(workers);
            const zellab::platform::SimdLimit limit(level);
            HostileScene scene(kWidth, kHeight, round);
            Call call = scene.call(render);
            std::srand(1);
            GetParam().run(call);
            didSomething = didSomething || !scene.pictureUntouched();
            return std::pair(Bytes(call.image, call.image + kBytes),
                             Bytes(call.second, call.second + kBytes));
        };
        EXPECT_TRUE(result(1, SimdLevel::baseline) == result(5, SimdLevel::avx2)) << "round " << round;
    }
    EXPECT_TRUE(didSomething || GetParam().every > 1);  // depth stays with the render
}

INSTANTIATE_TEST_SUITE_P(All, EveryMachine, testing::ValuesIn(kOperations),
                         [](const auto& operation) { return operation.param.name; });

}  // namespace
