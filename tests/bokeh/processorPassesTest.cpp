// The processor's passes beside the shaders' on the same pictures, and alike on every machine.
#include "bokeh/processorPasses.h"

#include <cstdlib>

#include "bokeh/glPasses.h"
#include "bokeh/spinIndex.h"
#include "glScene.h"
#include "support/everyMachine.h"
#include "zel_effects/zel_effects.h"

namespace {

using namespace zellab::Bokeh;
using namespace zeltest;
using Plane = zellab::PlaneView<const unsigned char>;

/// A bright subject before a ground of slopes and patches of all radii, with grain and any alpha.
struct PassScene {
    Size size, small;
    bool spins = false, hasHair = false, smooth = false;
    Bytes rgba{}, radius{}, working{}, strip = randomStrip(4), spin{}, hair{};

    void fill(unsigned seed) {
        rgba = drawnRgba(size.width, size.height, [&](int x, int y) {
            const int subject = isSubject(x, size.width) ? 110 : 0;
            return std::array{40 + subject + x * 60 / size.width, 180 - subject, 60 + y * 90 / size.height};
        });
        const Bytes noise = randomRgba(size.width, size.height, seed);
        for (std::size_t i = 0; i < rgba.size(); ++i)
            rgba[i] = i % 4 == 3 ? noise[i] : static_cast<unsigned char>(rgba[i] + noise[i] % 9);
        radius = patchyRadius(small.width, small.height, 40, seed);
        for (int y = 0; y < small.height; ++y)
            for (int x = 0; x < small.width; ++x) {
                auto& r = radius[static_cast<std::size_t>(y * small.width + x)];
                if (3 * y < 2 * small.height) r = static_cast<unsigned char>(60 * y / small.height);
                if (isSubject(x, small.width)) r = 0;
            }
        for (const auto r : radius) working.push_back(static_cast<unsigned char>(r / 2));
        if (spins) {
            const zellab::Plane<unsigned char> records = spinIndexPlane(small.width, small.height);
            spin.assign(records.data(), records.data() + records.size());
        }
        if (hasHair) hair = patchyRadius((size.width + 1) / 2, (size.height + 1) / 2, 254, seed);
    }
    static bool isSubject(int x, int width) { return 3 * x > width && 3 * x < 2 * width; }
    Plane plane(const Bytes& bytes) const {
        return bytes.empty() ? Plane() : Plane(bytes.data(), small.width, small.height);
    }
};

struct Drawn {
    Bytes small, finished;
};

/// Takes all steps. Where a working picture is given it replaces the one that was drawn: the two differ by a level
/// here and there, and what follows is compared without that.
Drawn draw(RenderPasses& passes, PassScene& scene, const Bytes* working = nullptr) {
    EXPECT_TRUE(passes.load(ZEL_ASSETS "/bokeh"));
    EXPECT_EQ(passes.begin(rgbaView(scene.rgba, scene.size)), RenderOutcome::drawn);
    Bytes small(scene.radius.size() * 4);
    EXPECT_EQ(passes.downscale(rgbaView(small, scene.small)), RenderOutcome::drawn);
    Drawn drawn{small, Bytes(scene.rgba.size())};
    if (working) small = *working;
    EXPECT_TRUE(passes.blur({.convolution = {.image = rgbaView(small, scene.small),
                                             .radius = scene.plane(scene.working),
                                             .maximumRadius = 20,
                                             .kernel = {scene.strip.data(), kStripWidth, kStripHeight},
                                             .spin = scene.plane(scene.spin),
                                             .look = lookValues({1.2f, 0.6f, 1.5f, 0.4f})},
                             .smooth = scene.smooth}));
    const float ratio = static_cast<float>(scene.size.width) / static_cast<float>(scene.small.width);
    const Plane hair(scene.hair.data(), (scene.size.width + 1) / 2, (scene.size.height + 1) / 2);
    EXPECT_EQ(passes.compose({scene.plane(scene.radius), ratio, scene.hasHair ? hair : Plane()},
                             rgbaView(drawn.finished, scene.size)),
              RenderOutcome::drawn);
    return drawn;
}

template <typename Passes>
Drawn drawBy(PassScene& scene, const Bytes* working = nullptr) {
    std::srand(7);
    Passes passes;
    return draw(passes, scene, working);
}

class ProcessorPassesBeside : public GlScene {};

// Sizes at which no pixel's middle falls on the line between two working pixels: which of both a driver reads
// there is its own affair.
TEST_F(ProcessorPassesBeside, TheShadersDrawTheSamePicture) {
    unsigned seed = 30;
    std::vector<PassScene> scenes = {
        {.size = {316, 224}, .small = {140, 100}, .hasHair = true, .smooth = true},
        {.size = {128, 88}, .small = {180, 124}, .spins = true},
        {.size = {656, 496}, .small = {220, 168}, .smooth = true}};
    for (PassScene& scene : scenes) {
        SCOPED_TRACE(testing::Message() << scene.size);
        scene.fill(++seed);
        const Drawn shaders = drawBy<GlPasses>(scene);
        const Drawn own = drawBy<ProcessorPasses>(scene, &shaders.small);
        EXPECT_LE(differenceOf(own.small, shaders.small).largest, 2);
        EXPECT_LT(differenceOf(own.small, shaders.small).mean, 0.3);
        EXPECT_LE(differenceOf(own.finished, shaders.finished).largest, 2);
        EXPECT_LT(differenceOf(own.finished, shaders.finished).mean, 0.3);
    }
}

TEST(ProcessorPasses, TheBytesAreTheSameOnEveryMachine) {
    for (PassScene scene :
         {PassScene{.size = {316, 224}, .small = {140, 100}, .hasHair = true, .smooth = true},
          PassScene{.size = {33, 70}, .small = {36, 72}, .spins = true}}) {
        scene.fill(5);
        expectSameOnEveryMachine([&] { return drawBy<ProcessorPasses>(scene).finished; });
    }
    for (const Size size : kAwkwardSizes) {
        SCOPED_TRACE(testing::Message() << size);
        PassScene scene{
            .size = size, .small = {size.width / 4 * 4 + 4, size.height / 4 * 4 + 4}, .hasHair = true};
        scene.fill(6);
        expectSameOnEveryMachine([&] { return drawBy<ProcessorPasses>(scene).finished; });
    }
}

/// A whole run, the processor's or OpenGL's.
Bytes run(const PassScene& scene, bool onProcessor, bool inPlace = true) {
    DefocusCore::ZelDepthDefocusRender render;
    Bytes shape, depth, picture = scene.rgba;
    for (const auto level : scene.strip) shape.insert(shape.end(), {level, level, level, 255});
    for (const auto r : scene.radius) depth.push_back(static_cast<unsigned char>(200 - 5 * r));
    render.setResourcePath("", onProcessor ? "/nonexistent" : ZEL_ASSETS "/bokeh");
    render.SetBokehImage("random", shape.data(), kStripWidth, kStripHeight);
    render.SetDepthPlane(depth.data(), scene.small.width, scene.small.height);
    render.DrawOnProcessor(onProcessor);
    const DefocusCore::ZelDepthDefocusRender copy = render;  // takes the choice along
    float face[4] = {0.4f, 0.4f, 0.2f, 0.2f};
    const auto [width, height] = scene.size;
    std::srand(3);
    if (inPlace) {
        EXPECT_TRUE(DefocusCore::ZelDepthDefocusRender(copy).Run(
            picture.data(), width, height, 1, face, 0.5f, 0.5f, 100, 1.0f, false, true, 1.0f, 0.5f, 0.0f));
        return picture;
    }
    Bytes target(picture.size());
    EXPECT_TRUE(render.Run(picture.data(), width, height, target.data(), width, height, 1, face, 0.5f, 0.5f,
                           true, 60, 0.0f, nullptr, false, false, true, 0.0f, 0.5f, 0.0f));
    EXPECT_EQ(picture, scene.rgba);
    return target;
}

// Of whole renders a few pixels along outlines may differ by more: there the guided filter makes more of a level
// in the working picture.
TEST_F(ProcessorPassesBeside, WholeRendersAgree) {
    PassScene scene{.size = {420, 300}, .small = {140, 100}};
    scene.fill(9);
    for (const bool inPlace : {true, false}) {
        const Bytes shaders = run(scene, false, inPlace), own = run(scene, true, inPlace);
        EXPECT_GT(differenceOf(own, scene.rgba).mean, 0.5);
        EXPECT_LT(differenceOf(own, shaders).mean, 0.3);
        std::size_t apart = 0;
        for (std::size_t i = 0; i < own.size(); ++i) apart += std::abs(own[i] - shaders[i]) > 2;
        EXPECT_LT(apart, own.size() / 200);
    }
}

}  // namespace
