// The C interface and the C++ operations behind it give the same bytes.
#include <gtest/gtest.h>

#include "effectSupport.h"
#include "hostScene.h"
#include "support/environment.h"

namespace {

using namespace zeltest;

zel::Mask maskOver(const zel_pixels& pixels) {
    const auto* const samples = static_cast<const unsigned char*>(pixels.data);
    return {pixels.width, pixels.height, {samples, samples + pixels.width * pixels.height}};
}

TEST(SameBytes, OfEveryEffectThroughBothDoors) {
    const Environment assets("ZEL_ASSETS", ZEL_ASSETS);  // both find them there
    const libzel::Context context = libzel::createContext();
    HostScene scene(context.get());
    const zel::FaceSet faces = [&] {
        const zel_face face = libzel::faceAt(scene.faces.get(), 0);
        zel::Face own;
        std::copy_n(face.rect, 4, own.rect.begin());
        for (std::size_t i = 0; i < own.points.size(); ++i)
            own.points[i] = {face.points[i][0], face.points[i][1]};
        return zel::FaceSet{scene.picture.width, scene.picture.height, {own}};
    }();
    const zel::Mask mask = maskOver(scene.mask), depth = maskOver(scene.depth);
    const auto* const second = static_cast<const unsigned char*>(scene.second.data);
    const zel::Image other{
        scene.picture.width, scene.picture.height, {second, second + scene.bytes().size()}};
    for (const zel::Effect& effect : zel::allEffects()) {
        SCOPED_TRACE(effect.name);
        const zel_effect* info = nullptr;
        ASSERT_EQ(zel_effect_find(effect.name.c_str(), &info), ZEL_OK);
        std::vector<std::string> words;
        for (std::size_t i = 0; i < effect.parameters.size(); ++i)
            if (effect.parameters[i].mustBeGiven())
                words.push_back(effect.parameters[i].name + "=" + neededValue(i));
        zel::Image image{scene.picture.width, scene.picture.height, scene.bytes()};
        const zel::ParameterValues values = valuesOf(effect, words);
        const zel::FaceSet none;
        zel::Mask maskOut, depthOut;
        zel::EffectRun run{image,
                           effect.faces != ZEL_NO ? faces : none,
                           effect.mask != ZEL_NO ? &mask : nullptr,
                           effect.second != ZEL_NO ? &other : nullptr,
                           values,
                           [](const std::string&, double) {},
                           effect.maskOut != ZEL_NO ? &maskOut : nullptr,
                           effect.depth != ZEL_NO ? &depth : nullptr,
                           effect.depthOut != ZEL_NO ? &depthOut : nullptr,
                           {zel_context_assets(context.get()), ZEL_GL_IF_THERE}};
        effect.run(run);
        EXPECT_TRUE(retouched(context.get(), scene, *info) == image.rgba);
        EXPECT_EQ(image.rgba == scene.bytes(), effect.name == "color-mixing")
            << "all but the neutral one show";
        EXPECT_TRUE(maskOut.samples.empty() || scene.maskBytes == maskOut.samples);
        EXPECT_TRUE(depthOut.samples.empty() || scene.depthBytes == depthOut.samples);
    }
}

}  // namespace
