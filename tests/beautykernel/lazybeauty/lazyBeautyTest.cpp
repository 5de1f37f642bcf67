#include "beautykernel/lazybeauty/lazybeauty.h"

#include <gtest/gtest.h>

#include "reference/slowLazyBeauty.h"
#include "support/scratchFolder.h"
#include "support/skinPicture.h"
#include "support/streamCapture.h"
#include "support/workingFolder.h"

namespace {

using zellab::CLazyBeauty;
using zellab::FaceData;
using namespace zeltest;

bool run(Bytes& rgba, Size size, const slow::LazySettings& set, const FaceData* face) {
    return CLazyBeauty().run({rgba.data(), size.width, size.height},
                             {.autoLevels = set.autoLevels,
                              .repairSpots = set.repairSpots,
                              .smoothLevel = set.smooth,
                              .overlayLevel = set.overlay},
                             face);
}

/// Both roads, with and without a face: sizes below, at and beyond those of the small copy.
TEST(LazyBeautyMatchesSlow, OnBothRoads) {
    const WithAssets assets;
    zellab::OverlayTable overlay;
    ASSERT_TRUE(overlay.load());
    const slow::LazySettings settings[] = {
        {true, true, 3, 3}, {false, true, 7, 10}, {false, false, 0, 0}, {true, false, 5, 12}};
    int turn = 0;
    for (const Size size :
         {Size{1, 1}, {9, 1}, {90, 70}, {131, 97}, {200, 210}, {481, 10}, {5, 700}, {560, 90}, {70, 641}})
        for (const bool withFace : {false, true}) {
            const slow::LazySettings& set = settings[turn++ % 4];
            const FaceData face = faceIn(size);
            const FaceData* const given = withFace ? &face : nullptr;
            compareWithSlow(
                size, faceLike(size, 7u + static_cast<unsigned>(turn)),
                [&](Bytes& p) {
                    slow::LazyPicture picture{size.width, size.height, p};
                    slow::lazyBeauty(picture, set, overlay, given);
                    p = picture.rgba;
                },
                [&](Bytes& p) { ASSERT_TRUE(run(p, size, set, given)); }, turn);
        }
}

TEST(LazyBeauty, AMissingOverlayLeavesThePictureAndSaysSo) {
    const ScratchFolder folder;
    const WorkingFolder inside(folder.path(""));
    const Bytes picture = faceLike({20, 20}, 3);
    Bytes rgba = picture;
    StreamCapture log(stderr);
    EXPECT_FALSE(run(rgba, {20, 20}, {true, true, 3, 3}, nullptr));
    EXPECT_EQ(rgba, picture);
    EXPECT_NE(log.text().find("ERROR:CLazyBeauty run ,failed to load PSOverlay.png from style"),
              std::string::npos);
}

TEST(LazyBeauty, TheTableIsKept) {
    CLazyBeauty beauty;
    Bytes rgba = faceLike({30, 30}, 1);
    const Bytes before = rgba;
    {
        const WithAssets assets;
        EXPECT_FALSE(beauty.run({nullptr, 30, 30}, {}, nullptr));
    }
    EXPECT_TRUE(beauty.run({rgba.data(), 30, 30}, {}, nullptr)) << "the folder is gone, the table is not";
    EXPECT_NE(rgba, before);
}

}  // namespace
