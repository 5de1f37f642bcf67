// Depth of field as a host sees it: what comes out of a run.
#include "defocusScene.h"

namespace {

using namespace zeltest;
using DefocusPictures = WithContext;
constexpr int kWidth = DefocusScene::kWidth, kHeight = DefocusScene::kHeight;

Bytes twoBuffers(const DefocusScene& scene, Render& render, bool useDepth, int width = kWidth,
                 int height = kHeight) {
    Bytes source = scene.picture, target(static_cast<std::size_t>(4 * width * height), 1);
    float faces[4] = {0.4f, 0.35f, 0.2f, 0.3f};
    std::srand(9);
    const bool ran = render.Run(source.data(), kWidth, kHeight, target.data(), width, height, 1, faces, 0.5f,
                                0.5f, useDepth, 60, 0.0f, nullptr, false, false, true, 0.0f, 0.5f, 0.0f);
    EXPECT_EQ(source, scene.picture) << "the source is not the render's to write";
    return ran ? target : Bytes();
}

TEST_F(DefocusPictures, BlurWhatLiesBehindAndKeepWhatIsInFocus) {
    Render render;
    scene.prepare(render);
    const Bytes out = scene.inPlace(render);
    ASSERT_FALSE(out.empty());
    const auto apart = [&](int left, int top, int across, int down) {
        return distance(cut(out, kWidth, left, top, across, down),
                        cut(scene.picture, kWidth, left, top, across, down));
    };
    EXPECT_EQ(apart(115, 80, 90, 150), 0);
    EXPECT_GT(apart(0, 0, 80, 240), 15);
    EXPECT_GT(apart(0, 0, 320, 40), 15);
    for (std::size_t i = 3; i < out.size(); i += 4) ASSERT_EQ(out[i], 255);
}

TEST_F(DefocusPictures, RunsDifferByTheGrainAloneAndLevelZeroByNothingMore) {
    Render render;
    scene.prepare(render);
    std::srand(1);
    const Bytes first = scene.inPlace(render);
    std::srand(1);
    EXPECT_EQ(scene.inPlace(render), first);
    std::srand(2);
    const Bytes other = scene.inPlace(render);
    EXPECT_GT(distance(other, first), 0);
    EXPECT_LT(distance(other, first), 6);
    EXPECT_LT(distance(scene.inPlace(render, {0}), scene.picture), 1);
}

TEST_F(DefocusPictures, BothFormsAgreeAsFarAsTheirResolutionLetsThem) {
    Render render;
    scene.prepare(render);
    Bytes inPlace = scene.picture;
    float faces[4] = {0.4f, 0.35f, 0.2f, 0.3f};
    std::srand(9);
    // The form with two buffers has these looks. Pictures this small have one working size for both forms.
    ASSERT_TRUE(render.Run(inPlace.data(), kWidth, kHeight, 1, faces, 0.5f, 0.5f, 60, 3.0f, false, true, 1.0f,
                           0.5f, 0.0f));
    const Bytes two = twoBuffers(scene, render, true);
    EXPECT_EQ(two, inPlace);
    const Bytes small = twoBuffers(scene, render, true, kWidth / 2, kHeight / 2);
    Bytes nearest;
    for (int y = 0; y < kHeight / 2; ++y)
        for (int x = 0; x < kWidth / 2; ++x)
            nearest.insert(nearest.end(), two.begin() + 4 * ((2 * y + 1) * kWidth + 2 * x + 1),
                           two.begin() + 4 * ((2 * y + 1) * kWidth + 2 * x + 1) + 4);
    EXPECT_EQ(small, nearest);
    const Bytes constant = twoBuffers(scene, render, false);
    EXPECT_GT(distance(cut(constant, kWidth, 115, 80, 90, 150), cut(scene.picture, kWidth, 115, 80, 90, 150)),
              10)
        << "one radius blurs the subject as well";
}

TEST_F(DefocusPictures, ASpinLastsOneRunAndOtherNamesDoNotEndIt) {
    Render render;
    const auto shapes = {std::pair{"a defocus_spin b", true}, {"plain", false}};
    scene.prepare(render);
    std::srand(5);
    const Bytes still = scene.inPlace(render);
    Bytes strip = DefocusScene::shape();
    for (const auto& [name, first] : shapes) {
        render.SetBokehImage("defocus_spin", strip.data(), 1056, 176);
        render.SetBokehImage(name, strip.data(), 1056, 176);
        std::srand(5);
        EXPECT_GT(distance(scene.inPlace(render), still), 1) << name << first;
        std::srand(5);
        EXPECT_EQ(scene.inPlace(render), still) << name;
    }
}

TEST_F(DefocusPictures, HairKeepsThePhotograph) {
    Render render;
    scene.prepare(render);
    Bytes hair(kWidth * kHeight, 0);
    for (int y = 0; y < 120; ++y) std::fill_n(hair.begin() + y * kWidth, 80, 255);
    render.SetHairMaskData(hair.data(), kWidth, kHeight);
    const auto left = [&](const Bytes& out, int top) {
        return distance(cut(out, kWidth, 10, top, 50, 60), cut(scene.picture, kWidth, 10, top, 50, 60));
    };
    const Bytes with = scene.inPlace(render, {60, true}), without = scene.inPlace(render);
    EXPECT_LT(left(with, 30), 1.5);
    EXPECT_GT(left(with, 160), 15);
    EXPECT_GT(left(without, 30), 15);
    Bytes bald(hair.size(), 0);
    render.SetHairMaskData(bald.data(), kWidth, kHeight);
    std::srand(3);
    const Bytes none = scene.inPlace(render);
    std::srand(3);
    EXPECT_EQ(scene.inPlace(render, {60, true}), none) << "a mask without hair is no mask";
    render.SetHairMaskData(nullptr, 5, 5);
    EXPECT_GT(left(scene.inPlace(render, {60, true}), 30), 15);
}

/// The line that tells the band in focus.
std::string bandLine(const std::string& log) {
    const std::size_t at = log.find("disparity: [");
    return at == std::string::npos ? "none" : log.substr(at, log.find('\n', at) - at);
}

// A thing a few samples of the depth plane wide fills the window around the focus point or not, by the size
// of the picture that is looked at.
TEST(DefocusFocus, PreviewAndFinalChooseTheSame) {
    constexpr int kLong = 2000, kShort = 160, kDepthWidth = 384, kDepthHeight = 31;  // working sizes 720, 878
    const zellab::OffscreenContext context;
    if (!context.isCurrent()) GTEST_SKIP() << "no OpenGL here: " << context.failedCall();
    Bytes strip = DefocusScene::shape(), picture = randomRgba(kLong, kShort, 3), copy = picture;
    Bytes depth(kDepthWidth * kDepthHeight, 60);
    for (std::size_t i = 0; i < depth.size(); ++i)
        if (std::abs(static_cast<int>(i % kDepthWidth) - kDepthWidth / 2) <= 4) depth[i] = 190;
    Render render;
    render.setResourcePath("", ZEL_ASSETS "/bokeh");
    render.SetBokehImage("half", strip.data(), 1056, 176);
    render.SetDepthPlane(depth.data(), kDepthWidth, kDepthHeight);
    std::string preview, full;
    {
        StreamCapture log(stderr);
        render.Run(copy.data(), kLong, kShort, picture.data(), kLong, kShort, 0, nullptr, 0.5f, 0.5f, true,
                   60, 0.0f, nullptr, false, false, true, 0.0f, 0.5f, 0.0f);
        preview = bandLine(log.text());
    }
    StreamCapture log(stderr);
    render.Run(copy.data(), kLong, kShort, 0, nullptr, 0.5f, 0.5f, 60, 3.0f, false, true, 1.0f, 0.5f, 0.0f);
    full = bandLine(log.text());
    EXPECT_EQ(full, preview);
    EXPECT_EQ(full, "disparity: [58, 64]") << "what fills most of the window of the plane itself";
}

}  // namespace
