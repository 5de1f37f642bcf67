// Depth of field with everything turned around that a host can turn around.
#include <functional>

#include "defocusScene.h"

namespace {

using namespace zeltest;
using DefocusHostile = WithContext;

bool logs(const char* line, const std::function<bool()>& call) {
    StreamCapture log(stderr);
    const bool result = call();
    return !result && log.text().find(line) != std::string::npos;
}

TEST_F(DefocusHostile, EachStepBeforeItsTimeIsRefusedWithItsLine) {
    Render render;
    Bytes strip = DefocusScene::shape(), image = scene.picture;
    const auto runs = [&] { return !scene.inPlace(render).empty(); };
    const auto estimates = [&] { return render.DepthEstimate(image.data(), 320, 240, nullptr, 0, 0); };
    EXPECT_TRUE(logs("please SetBokehImage fisrt.", runs));
    EXPECT_TRUE(logs("depthRefine false", estimates));
    render.Release();
    EXPECT_FALSE(render.Init(true)) << "no folder was named";
    EXPECT_TRUE(logs("depthRefine false", estimates)) << "an engine without a network";
    render.setResourcePath(nullptr, nullptr);
    EXPECT_FALSE(render.Init(false));
    EXPECT_FALSE(render.SetBokehImage("x", nullptr, 4, 4));
    EXPECT_FALSE(render.SetBokehImage(nullptr, strip.data(), 0, 4));
    EXPECT_TRUE(logs("please SetBokehImage fisrt.", runs));

    scene.prepare(render);
    EXPECT_TRUE(runs());
    render.Release();
    render.Release();
    EXPECT_TRUE(runs()) << "the plane and the shape outlive the engine";
    EXPECT_TRUE(logs("depthRefine false", estimates));
    EXPECT_EQ(render.DepthPlane(), nullptr);
    EXPECT_TRUE(runs()) << "no depth: nothing to tell near from far";
}

TEST_F(DefocusHostile, BadPicturesAndFoldersLeaveThePictureAsItIs) {
    Render render;
    scene.prepare(render);
    Bytes image = scene.picture;
    float faces[4] = {0.4f, 0.4f, 0.2f, 0.2f};
    const auto run = [&](unsigned char* pixels, int width, int height) {
        return render.Run(pixels, width, height, 1, faces, 0.5f, 0.5f, 60, 1.0f, false, true, 1.0f, 0.5f,
                          0.0f);
    };
    EXPECT_FALSE(render.Run(image.data(), 320, 240, nullptr, 320, 240, 1, faces, 0.5f, 0.5f, true, 60, 0,
                            nullptr, false, false, true, 0, 0.5f, 0));
    for (const char* folder : {"", "/nonexistent", ZEL_ASSETS}) {
        render.setResourcePath("", folder);
        EXPECT_FALSE(run(image.data(), 320, 240)) << folder;
    }
    EXPECT_EQ(image, scene.picture);
    render.setResourcePath("", ZEL_ASSETS "/bokeh");
    EXPECT_TRUE(run(image.data(), 320, 240)) << "a failure leaves nothing behind";
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 500}, {500, 1}, {3, 2}}) {
        Bytes tiny = randomRgba(width, height, 1);
        EXPECT_TRUE(run(tiny.data(), width, height)) << width << 'x' << height;
    }
}

TEST_F(DefocusHostile, ShapesOfAnySizeRender) {
    Render render;
    scene.prepare(render);
    for (const auto& [width, height] : {std::pair{1, 1}, {176, 176}, {2000, 3}}) {
        Bytes shape(static_cast<std::size_t>(4 * width * height), 200);
        ASSERT_TRUE(render.SetBokehImage("odd", shape.data(), width, height));
        EXPECT_FALSE(scene.inPlace(render).empty()) << width << 'x' << height;
    }
}

TEST_F(DefocusHostile, WithoutAContextOfTheCallersThePictureIsLeftAlone) {
    Render render;
    scene.prepare(render);
    // The render's own context is gone before it draws, and the thread has none afterwards.
    StreamCapture log(stderr);
    for (const bool claims : {false, true, false}) {
        const Bytes image = scene.inPlace(render, {60, false, claims});
        EXPECT_TRUE(image.empty() || image == scene.picture);
    }
    EXPECT_FALSE(log.text().empty());
}

TEST_F(DefocusHostile, CopiesShareWhatTheyHoldAndTheLastFreesIt) {
    Bytes expected;
    Render last;
    {
        Render first;
        scene.prepare(first);
        std::srand(4);
        expected = scene.inPlace(first);
        Render second(first), third;
        third = second;
        third = *&third;
        const Bytes flat(64 * 64, 200);
        EXPECT_TRUE(second.SetDepthPlane(flat.data(), 64, 64));  // the others keep theirs
        EXPECT_EQ(first.DepthPlane(), third.DepthPlane());
        Bytes strip = DefocusScene::shape();
        EXPECT_TRUE(first.SetBokehImage("new", strip.data(), 1056, 176));
        last = third;
    }
    std::srand(4);
    EXPECT_EQ(scene.inPlace(last), expected);
    EXPECT_FALSE(last.SetDepthPlane(nullptr, 4, 4));
    EXPECT_FALSE(last.SetDepthPlane(expected.data(), 4, 0));
    EXPECT_EQ(last.DepthPlaneWidth(), DefocusScene::kWidth) << "a refused plane changes nothing";
}

}  // namespace
