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
using zeltest::Bytes;
using zeltest::faceIn;
using zeltest::faceLike;
using zeltest::Size;

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
    const zeltest::WithAssets assets;
    zellab::OverlayTable overlay;
    ASSERT_TRUE(overlay.load());
    const slow::LazySettings settings[] = {
        {true, true, 3, 3}, {false, true, 7, 10}, {false, false, 0, 0}, {true, false, 5, 12}};
    int turn = 0;
    for (const Size size :
         {Size{1, 1}, {9, 1}, {90, 70}, {131, 97}, {200, 210}, {481, 10}, {5, 700}, {560, 90}, {70, 641}})
        for (const bool withFace : {false, true}) {
            const slow::LazySettings& set = settings[turn++ % 4];
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", face " << withFace);
            const Bytes picture = faceLike(size, 7u + static_cast<unsigned>(turn));
            const FaceData face = faceIn(size);
            slow::LazyPicture expected{size.width, size.height, picture};
            slow::lazyBeauty(expected, set, overlay, withFace ? &face : nullptr);
            zeltest::onEveryMachine([&] {
                Bytes actual = picture;
                ASSERT_TRUE(run(actual, size, set, withFace ? &face : nullptr));
                ASSERT_TRUE(zeltest::sameSamples(expected.rgba, actual, size.width * 4));
            });
            ASSERT_FALSE(HasFailure());
        }
}

TEST(LazyBeauty, MissingOrDamagedOverlayLeavesThePictureAndSaysSo) {
    const zeltest::ScratchFolder folder;
    const zeltest::WorkingFolder inside(folder.path(""));
    const Size size{20, 20};
    const Bytes picture = faceLike(size, 3);
    const auto refused = [&] {
        Bytes rgba = picture;
        zeltest::StreamCapture log(stderr);
        const bool ok = run(rgba, size, {true, true, 3, 3}, nullptr);
        const std::string text = log.text();
        return !ok && rgba == picture &&
               text.find("ERROR:CLazyBeauty run ,failed to load PSOverlay.png from style") !=
                   std::string::npos;
    };
    EXPECT_TRUE(refused());
    std::filesystem::create_directories(folder.path("style/base"));
    for (const Bytes& head : {Bytes{}, Bytes{0, 1, 0, 0}, Bytes{255, 255, 255, 255, 0, 1, 0, 0},
                              Bytes{16, 0, 0, 0, 16, 0, 0, 0}}) {
        folder.write("style/base/PSOverlay.bin", head);
        EXPECT_TRUE(refused()) << head.size() << " bytes";
    }
}

TEST(LazyBeauty, TheTableIsKeptAndBadPicturesAreRefused) {
    CLazyBeauty beauty;
    Bytes rgba = faceLike({30, 30}, 1);
    const Bytes before = rgba;
    {
        const zeltest::WithAssets assets;
        EXPECT_FALSE(beauty.run({nullptr, 30, 30}, {}, nullptr));
    }
    EXPECT_TRUE(beauty.run({rgba.data(), 30, 30}, {}, nullptr)) << "the folder is gone, the table is not";
    EXPECT_NE(rgba, before);
}

}  // namespace
