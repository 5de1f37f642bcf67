#include <gtest/gtest.h>

#include "effectSupport.h"
#include "portrait/portrait.h"

namespace {

using zel::FaceSet;
using zel::Image;

/// A portrait whose one face stands in the set twice: the second entry far smaller, in a corner.
struct TwoFaces {
    Image image;
    FaceSet faces;
    TwoFaces() {
        zel::PortraitParams params;
        params.width = 240;
        params.height = 300;
        const zel::Portrait portrait = zel::drawPortrait(params);
        image = portrait.image;
        faces = portrait.faces;
        faces.faces.push_back(faces.faces[0]);
        for (auto& p : faces.faces[1].points) p = {p.x * 0.25f, p.y * 0.25f};
    }
};

Image applied(const std::string& name, const TwoFaces& scene, const std::vector<std::string>& assignments) {
    return zeltest::applied(name, scene.image, assignments, scene.faces);
}

/// How many bytes differ in the top left corner where the small face lies, and elsewhere.
std::pair<long, long> changes(const Image& a, const Image& b) {
    long corner = 0, rest = 0;
    for (std::size_t i = 0; i < a.rgba.size(); ++i) {
        const auto x = static_cast<int>(i / 4) % a.width, y = static_cast<int>(i / 4) / a.width;
        (x < a.width / 4 && y < a.height / 4 ? corner : rest) += a.rgba[i] != b.rgba[i];
    }
    return {corner, rest};
}

TEST(ReshapeEffects, FaceIndexPicksOneFaceAndTheDefaultTakesAll) {
    const TwoFaces scene;
    for (const char* name : {"auto-slim-face", "auto-zoom-eye"}) {
        SCOPED_TRACE(name);
        const auto all = changes(scene.image, applied(name, scene, {"strength=1"}));
        const auto first = changes(scene.image, applied(name, scene, {"strength=1", "faceIndex=0"}));
        const auto second = changes(scene.image, applied(name, scene, {"strength=1", "faceIndex=1"}));
        EXPECT_GT(all.first, 0);
        EXPECT_GT(all.second, 0);
        EXPECT_EQ(first.first, 0);
        EXPECT_GT(first.second, 0);
        EXPECT_GT(second.first, 0);
        EXPECT_LT(second.second, first.second / 4);
        EXPECT_THROW(applied(name, scene, {"faceIndex=2"}), zel::Failure);
    }
}

TEST(ReshapeEffects, EveryFactorReachesTheLibrary) {
    const TwoFaces scene;
    const Image slim = applied("auto-slim-face", scene, {"strength=1"});
    for (const char* set : {"outerWeight=0.2", "middleWeight=0.2", "innerWeight=0.1", "upperFactor=0.9",
                            "lowerFactor=0.9", "jawFactor=0.9", "chinFactor=1.5"})
        EXPECT_NE(applied("auto-slim-face", scene, {"strength=1", set}).rgba, slim.rgba) << set;
    const Image zoomed = applied("auto-zoom-eye", scene, {"strength=1"});
    for (const char* set : {"eyeRatioLimit=1.5", "zoomFactor=0.6", "ringScale=0.4"})
        EXPECT_NE(applied("auto-zoom-eye", scene, {"strength=1", set}).rgba, zoomed.rgba) << set;
}

TEST(ReshapeEffects, BrushesWorkWhereTheyAreToldAndRefuseTinyRadii) {
    const TwoFaces scene;
    const auto drag = [&](const char* radius) {
        return applied("slim-face", scene,
                       {"startX=0.1", "startY=0.1", "endX=0.15", "endY=0.1", radius, "strength=80"});
    };
    const auto moved = changes(scene.image, drag("radius=0.08"));
    EXPECT_GT(moved.first, 0);
    EXPECT_EQ(moved.second, 0);
    EXPECT_THROW(drag("radius=0.005"), zel::Failure);
    const std::vector<std::string> eye = {"centerX=0.12", "centerY=0.12", "radius=0.1"};
    const auto zoomed = changes(scene.image, applied("zoom-eye", scene, eye));
    EXPECT_GT(zoomed.first, 0);
    EXPECT_EQ(zoomed.second, 0);
}

}  // namespace
