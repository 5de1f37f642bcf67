// Every operation of the library called as by a careless host: nothing may crash or hang, nothing beside a
// buffer may be touched, and what cannot be done leaves every buffer as it was.
#include <gtest/gtest.h>

#include <climits>

#include "support/hostileScene.h"
#include "support/scratchFolder.h"
#include "support/workingFolder.h"

namespace {

using namespace zeltest;

/// Where the calls are made: with the assets, or in a folder without any.
class HostileCalls : public testing::TestWithParam<std::tuple<Operation, bool>> {};

TEST_P(HostileCalls, AreContained) {
    const auto& [operation, withAssets] = GetParam();
    const zeltest::ScratchFolder empty;
    const zeltest::WorkingFolder folder(withAssets ? ZEL_ASSETS : empty.path(""));
    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath("depth", "bokeh");
    EXPECT_EQ(render.Init(false), withAssets);
    bool didSomething = false;
    constexpr int kPastTheDoors = 9;  // every so many rounds have a good face
    for (const auto& [width, height] :
         {std::pair{64, 48}, {270, 480}, {11, 9}, {3, 2}, {1, 1}, {1, 5000}, {5000, 1}}) {
        const int rounds = width < 64 || height == 1 ? 36 : HostileScene::kRounds;
        for (int round = 0; round < rounds; round += height == 480 ? kPastTheDoors : 1) {
            if (round % operation.every != 0) continue;
            HostileScene scene(width, height, round);
            Call call = scene.call(render);
            SCOPED_TRACE(testing::Message() << width << " by " << height << ", round " << round);
            operation.run(call);
            ASSERT_TRUE(scene.guardsIntact());
            ASSERT_TRUE(scene.alphaUntouched() || !operation.keepsAlpha());
            didSomething = didSomething || !scene.pictureUntouched();
            if (const unsigned lacks = operation.lackedBy(call, scene.hasFace())) {
                ASSERT_TRUE(scene.pictureUntouched()) << "lacks " << lacks;
            }
        }
    }
    // Calls that all give up at the door would prove little.
    EXPECT_TRUE(didSomething || !withAssets || operation.every > 1);
}

TEST_P(HostileCalls, WithoutAPictureTouchNothing) {
    const auto& [operation, withAssets] = GetParam();
    DefocusCore::ZelDepthDefocusRender render;
    HostileScene scene(16, 12, 0);
    for (const auto& [width, height] :
         {std::pair{16, 12}, {0, 12}, {16, 0}, {-1, 12}, {16, -1}, {INT_MIN, 12}}) {
        Call call = scene.call(render);
        if (width == 16 && height == 12) call.image = nullptr;
        call.width = width, call.height = height;
        EXPECT_EQ(operation.run(call), operation.badAnswer) << width << " by " << height;
        EXPECT_TRUE(scene.nothingTouched() && scene.guardsIntact()) << width << " by " << height;
    }
}

INSTANTIATE_TEST_SUITE_P(All, HostileCalls, testing::Combine(testing::ValuesIn(kOperations), testing::Bool()),
                         [](const auto& of) {
                             const bool withAssets = std::get<1>(of.param);
                             return std::string(std::get<0>(of.param).name) +
                                    (withAssets ? "WithAssets" : "WithoutAssets");
                         });

}  // namespace
