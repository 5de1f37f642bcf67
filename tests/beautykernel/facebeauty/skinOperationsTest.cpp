#include <gtest/gtest.h>

#include <cmath>

#include "reference/slowSkin.h"
#include "support/hostFaces.h"
#include "support/skinPicture.h"
#include "support/streamCapture.h"
#include "support/workingFolder.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace {

using ZelImageCore::TableSkin;
using namespace zeltest;

Bytes retouched(Bytes rgba, Size size, float strength, ImageCoreFaceInfo* faces, Bytes mask = {}) {
    const StreamCapture quiet(stderr);
    TableSkin::ImageProcessWithQornSkinRetouch(rgba.data(), size.width, size.height, strength, faces,
                                               mask.empty() ? nullptr : mask.data());
    return rgba;
}

Bytes whitened(Bytes rgba, Size size, float level, float temperature, Bytes mask = {}, Bytes prepared = {}) {
    const StreamCapture quiet(stderr);
    float params[] = {level, temperature};
    TableSkin::ImageProcessWithQornSkinWhitening(rgba.data(), size.width, size.height, params, nullptr,
                                                 mask.empty() ? nullptr : mask.data(),
                                                 prepared.empty() ? nullptr : prepared.data());
    return rgba;
}

Bytes skinned(Bytes rgba, Size size, std::array<float, 4> params) {
    TableSkin::ImageProcessWithSkin(rgba.data(), size.width, size.height, params.data(), nullptr);
    return rgba;
}

Bytes curved(Bytes rgba, int y) {
    const slow::Table table = slow::middleCurve(130, y);
    slow::eachColour(rgba, [&](unsigned char v, std::size_t) { return table[v]; });
    return rgba;
}

/// With no face the eye step finds nothing, so that every step is known.
TEST(QornRetouchMatchesSlow, WithoutAFace) {
    const WithAssets assets;
    zellab::OverlayTable overlay;
    ASSERT_TRUE(overlay.load());
    const Size size{120, 90};
    const Bytes picture = faceLike(size, 21), mask = randomPlane(size.width, size.height, 22);
    Bytes levelled = picture;
    slow::autoLevels(levelled);
    slow::LazyPicture work{size.width, size.height, levelled};
    slow::faceBeauty(work, {1, 0, 1, 0, 1.0f, 0.5f}, {}, 0, 0, overlay, {}, nullptr);
    HostFaces nobody(size, 0);
    for (const float strength : {0.0f, 0.37f, 1.0f, 1.6f}) {
        const int a = static_cast<int>(strength * 256.0f);
        Bytes expected = levelled;
        for (std::size_t i = 0; i < expected.size(); ++i)
            if (i % 4 != 3) expected[i] = slow::toByte((levelled[i] * (256 - a) + work.rgba[i] * a) >> 8);
        expected = curved(expected, 137);
        EXPECT_TRUE(sameSamples(expected, retouched(picture, size, strength, nobody.info()), 480));
        EXPECT_TRUE(sameSamples(expected, retouched(picture, size, strength, nullptr), 480));
        slow::mixByMask(expected, picture, mask);
        EXPECT_TRUE(sameSamples(expected, retouched(picture, size, strength, nullptr, mask), 480));
    }
}

TEST(QornRetouch, TheFirstFaceDecidesAndAMaskOfZeroKeepsThePicture) {
    const WithAssets assets;
    const Size size{660, 500};
    const Bytes picture = faceLike(size, 23);
    HostFaces one(size, 1), three(size, 3);
    const Bytes alone = retouched(picture, size, 0.8f, one.info());
    EXPECT_EQ(retouched(picture, size, 0.8f, three.info()), alone);
    EXPECT_NE(retouched(picture, size, 0.4f, one.info()), alone);
    const Bytes nothing(picture.size() / 4, 0), all(picture.size() / 4, 255);
    EXPECT_EQ(retouched(picture, size, 0.8f, one.info(), nothing), picture);
    const Bytes whole = retouched(picture, size, 0.8f, one.info(), all);
    for (std::size_t i = 0; i < whole.size(); ++i) ASSERT_NEAR(whole[i], alone[i], 1);
}

TEST(QornWhiteningMatchesSlow, FromThePictureAndFromAPreparedOne) {
    const Size size{70, 50};
    const Bytes picture = faceLike(size, 24), mask = randomPlane(size.width, size.height, 25);
    const Bytes prepared = randomRgba(size.width, size.height, 26);
    for (const float level : {0.0f, 3.9f, 10.0f, -2.5f, 40.0f})
        for (const float temperature : {0.5f, 0.8f, -1.0f}) {
            const auto finished = [&](const Bytes& start) {
                Bytes rgba = curved(start, static_cast<int>(level) * 5 + 137);
                zellab::ColorTemperatureBlend({rgba.data(), size.width, size.height}, temperature, 0);
                return rgba;
            };
            Bytes levelled = picture;
            slow::autoLevels(levelled);
            EXPECT_EQ(whitened(picture, size, level, temperature), finished(levelled));
            Bytes expected = finished(prepared);
            slow::mixByMask(expected, picture, mask);
            EXPECT_EQ(whitened(picture, size, level, temperature, mask, prepared), expected);
        }
}

TEST(SkinMatchesSlow, AndWithoutARadiusOnlyTheToneRuns) {
    const Size size{61, 33};
    const Bytes picture = faceLike(size, 27);
    for (const auto& [radius, mix, level, tone] : std::vector<std::array<float, 4>>{{4.9f, 7, 3.7f, 0},
                                                                                    {2, 10, 0, 0.6f},
                                                                                    {9, 3.3f, -4, -0.4f},
                                                                                    {0.9f, 8, 5, 0.3f},
                                                                                    {-3, 8, 5, -1}}) {
        Bytes expected = picture;
        slow::skin(expected, size.width, size.height, radius, mix, level, [&, strength = tone](Bytes& rgba) {
            const auto step = strength < 0 ? zellab::ToneTableBlend : zellab::ToneTableBlendWarm;
            step({rgba.data(), size.width, size.height}, std::fabs(strength));
        });
        EXPECT_TRUE(sameSamples(expected, skinned(picture, size, {radius, mix, level, tone}), 244));
    }
    EXPECT_EQ(skinned(picture, size, {0, 8, 9, 0}), picture) << "no radius, no tone";
}

TEST(SkinColor, TintsThroughTheTableAndRefusesShortOnes) {
    const Size size{64, 64};
    Bytes neutral = cubePicture();
    const Bytes picture = randomRgba(size.width, size.height, 28);
    const auto tinted = [&](float strength, float level, int tableWidth, int tableHeight) {
        Bytes rgba = picture;
        TableSkin::ImageProcessWithSkinColor(rgba.data(), size.width, size.height, strength, level,
                                             neutral.data(), tableWidth, tableHeight);
        return rgba;
    };
    for (const float level : {0.0f, 2.6f}) {
        Bytes table = curved(neutral, static_cast<int>(level * 4 + 137)), expected = picture;
        zellab::ColorTemperatureBlend({table.data(), 64, 64}, 0.7f, 0);
        slow::colorCube(expected, table, 16);
        EXPECT_EQ(tinted(0.7f, level, 64, 64), expected);
    }
    EXPECT_NE(tinted(0.5f, 0, 64, 64), picture) << "level 0 brightens a little";
    for (const auto& [w, h] : {std::pair{63, 64}, {0, 64}, {-64, -64}})
        EXPECT_EQ(tinted(0.9f, 5, w, h), picture);
}

}  // namespace
