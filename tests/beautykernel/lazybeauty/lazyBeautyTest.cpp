#include "beautykernel/lazybeauty/lazybeauty.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference/slowLazyBeauty.h"
#include "support/everyMachine.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "support/workingFolder.h"

namespace {

using zellab::CLazyBeauty;
using zellab::FaceData;
using zeltest::Bytes;
using zeltest::Size;

/// Skin with a gentle shade and a little noise, eyes, a mouth and some dots, before a bluish ground.
Bytes faceLike(Size size, unsigned seed) {
    Bytes rgba = zeltest::randomRgba(size.width, size.height, seed);
    const float cx = static_cast<float>(size.width) / 2, cy = static_cast<float>(size.height) / 2;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const float u = (static_cast<float>(x) - cx) / cx, v = (static_cast<float>(y) - cy) / cy;
            const bool skin = u * u * 2 + v * v * 1.5f < 1, feature = std::fabs(v * 4 - 1) < 0.2f && skin;
            const bool dot = skin && x % 23 < 3 && y % 19 < 3;
            const float shade = 1 - 0.3f * u - 0.2f * v, base[3] = {190, 145, 120},
                        ground[3] = {70, 100, 160};
            unsigned char* p = &rgba[static_cast<std::size_t>(y * size.width + x) * 4];
            for (int c = 0; c < 3; ++c) {
                const float value = skin ? base[c] * shade * (feature ? 0.5f : dot ? 0.9f : 1) : ground[c];
                p[c] = static_cast<unsigned char>(value + static_cast<float>(p[c] % 9));
            }
        }
    return rgba;
}

FaceData faceIn(Size size) {
    FaceData face;
    face.left = size.width / 6, face.right = size.width * 5 / 6;
    face.top = size.height / 8, face.bottom = size.height * 7 / 8;
    for (int i = 0; i < 170; ++i) {
        const float angle = static_cast<float>(i) * 0.37f;
        face.points[i] = {static_cast<float>(size.width) * (0.5f + 0.3f * std::cos(angle)),
                          static_cast<float>(size.height) * (0.5f + 0.1f * std::sin(angle))};
    }
    face.pointCount = 170;
    return face;
}

bool run(Bytes& rgba, Size size, const slow::LazySettings& set, const FaceData* face) {
    return CLazyBeauty().run(rgba.data(), size.width, size.height, set.autoLevels, set.repairSpots,
                             set.smooth, set.overlay, face ? 1 : 0, face);
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
        EXPECT_FALSE(beauty.run(nullptr, 30, 30, true, true, 3, 3, 0, nullptr));
    }
    EXPECT_FALSE(beauty.run(rgba.data(), 0, 30, true, true, 3, 3, 0, nullptr));
    EXPECT_FALSE(beauty.run(rgba.data(), 30, -1, true, true, 3, 3, 0, nullptr));
    EXPECT_EQ(rgba, before);
    EXPECT_TRUE(beauty.run(rgba.data(), 30, 30, true, true, 3, 3, 0, nullptr))
        << "the folder is gone, the table is not";
    EXPECT_NE(rgba, before);
}

/// Faces and levels from a careless caller, on both roads: nothing may be read or written outside.
TEST(LazyBeauty, HostileFacesAndLevelsAreContained) {
    const zeltest::WithAssets assets;
    for (const Size size : {Size{1, 1}, {40, 30}, {500, 20}, {2, 700}}) {
        std::vector<FaceData> faces(6, faceIn(size));
        faces[0] = {};
        faces[1].left = -5000, faces[1].right = 9000, faces[1].top = -77, faces[1].bottom = 100000;
        faces[2].left = size.width * 2, faces[2].right = size.width * 3;
        faces[3].right = faces[3].left + 1, faces[3].bottom = faces[3].top + 1;
        faces[4].left = 2147483647, faces[4].right = -2147483647, faces[4].top = -2147483647;
        for (auto& p : faces[5].points) p = {NAN, INFINITY};
        for (const FaceData& face : faces)
            for (const int level : {-3, 4, 1000}) {
                Bytes rgba = faceLike(size, 5), before = rgba;
                EXPECT_TRUE(run(rgba, size, {true, true, level, level}, &face));
                for (std::size_t i = 3; i < rgba.size(); i += 4) ASSERT_EQ(rgba[i], before[i]);
            }
        for (const unsigned char value : {0, 255}) {
            Bytes flat(static_cast<std::size_t>(size.width * size.height) * 4, value), before = flat;
            EXPECT_TRUE(run(flat, size, {true, true, 7, 10}, nullptr));
            for (std::size_t i = 0; i < flat.size(); ++i)
                ASSERT_LE(std::abs(flat[i] - before[i]), 2) << "black and white stay but for truncation";
        }
    }
}

}  // namespace
