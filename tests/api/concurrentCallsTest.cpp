// Operations may be called from any thread at the same time, and meet nowhere.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "hostileScene.h"
#include "support/workingFolder.h"

namespace {

using ZelImageCore::CScenarioBeauty, ZelImageCore::TableBase, ZelImageCore::TableSkin;
using zeltest::Bytes;
using zeltest::HostileScene;

constexpr int kEffects = 10, kWidth = 180, kHeight = 320;

/// The picture after one effect, each of another family. None of them draws on rand().
Bytes retouched(int effect) {
    HostileScene scene(kWidth, kHeight, 0);
    DefocusCore::ZelDepthDefocusRender render;
    const zeltest::Call c = scene.call(render);
    float params[] = {8, 5, 5, 0.7f};
    CGRect rect = c.rect;
    const auto scenario = [&](ZelImageCore::eScenarioType type) {
        CScenarioBeauty().Run(c.image, kWidth, kHeight, type, 0.8f, c.table, c.faceInfo);
    };
    switch (effect) {
        case 0:
            scenario(ZelImageCore::eScenario1);
            break;
        case 1:
            scenario(ZelImageCore::eScenario2);
            break;
        case 2:
            scenario(ZelImageCore::eScenario6);
            break;
        case 3:
            TableSkin::ImageProcessWithQornSkinRetouch(c.image, kWidth, kHeight, 1, c.faceInfo, nullptr);
            break;
        case 4:
            TableSkin::ImageProcessWithSkin(c.image, kWidth, kHeight, params, nullptr);
            break;
        case 5:
            TableSkin::ImageProcessWithInpaint(c.image, kWidth, kHeight, c.mask, 1);
            break;
        case 6:
            TableSkin::ImageProcessWithWrinkleCleaner(c.image, kWidth, kHeight, c.mask, 80, 0);
            break;
        case 7:
            TableSkin::ImageProcessWithAutoRemoveBlackCircle(c.image, kWidth, kHeight, rect, c.points, 0, 1,
                                                             1);
            break;
        case 8:
            TableBase::ImageProcessWithColorMixing(c.image, kWidth, kHeight, params, 4);
            break;
        default:
            TableSkin::ImageProcessWithNatureSmooth(c.image, kWidth, kHeight, 9);
            break;
    }
    EXPECT_FALSE(scene.pictureUntouched()) << effect;
    return Bytes(c.image, c.image + std::size_t{4} * kWidth * kHeight);
}

TEST(ConcurrentCalls, OfDifferentEffectsGiveTheBytesOfCallsInTurn) {
    const zeltest::WorkingFolder assets(ZEL_ASSETS);
    // The first calls come at once, so that tables which are made at first use are made by several threads.
    std::vector<Bytes> atOnce(kEffects);
    std::vector<std::thread> threads;
    for (int effect = 0; effect < kEffects; ++effect)
        threads.emplace_back(
            [&atOnce, effect] { atOnce[static_cast<std::size_t>(effect)] = retouched(effect); });
    for (std::thread& thread : threads) thread.join();
    for (int effect = 0; effect < kEffects; ++effect)
        EXPECT_TRUE(atOnce[static_cast<std::size_t>(effect)] == retouched(effect)) << effect;
}

}  // namespace
