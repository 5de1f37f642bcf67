// Depth of field on reduced copies of one picture, as previews show them: the blur is the same share of each.
#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <zel/zel.hpp>

#include "support/randomImage.h"

namespace {

using zeltest::Bytes;

/// An edge in the ground on the left, far above, nearer below; the subject on the right.
struct Scene {
    explicit Scene(int side)
        : width(side), height(side / 4 * 3), rgba(zeltest::drawnRgba(width, height, [this](int x, int) {
              const int level = x < width * 3 / 10 ? 180 : 60;
              return std::array{level, level, level};
          })) {
        for (std::size_t i = 0; i < depth.size(); ++i)
            depth[i] = i % kDepthWidth >= 260 ? 200 : i < depth.size() / 2 ? 10 : 100;
    }
    static constexpr int kDepthWidth = 400, kDepthHeight = 300;
    int width, height;
    Bytes rgba, depth = Bytes(kDepthWidth * kDepthHeight);
};

/// The radius of the disc that an edge was blurred by, from the edge's slope in the rows around y; as a share of the
/// width.
double radiusAt(const Scene& scene, const Bytes& rgba, double y) {
    const auto width = static_cast<std::size_t>(scene.width), first = width / 10, last = width / 2;
    double sum = 0, moment = 0, square = 0;
    for (auto row = static_cast<std::size_t>((y - 0.05) * scene.height);
         row < static_cast<std::size_t>((y + 0.05) * scene.height); ++row)
        for (std::size_t x = first; x < last; ++x) {
            const std::size_t i = 4 * (row * width + x);
            const double slope = rgba[i] - rgba[i + 4], place = static_cast<double>(x) / scene.width;
            sum += slope;
            moment += slope * place;
            square += slope * place * place;
        }
    return 2 * std::sqrt(square / sum - moment * moment / (sum * sum));
}

struct Radii {
    double far, near;
};

Radii radiiAt(int side, const char* level, const char* resolution) {
    auto settings = libzel::sized<zel_settings>();
    settings.assets = ZEL_ASSETS;
    settings.gl = ZEL_GL_NEVER;
    const libzel::Context context = libzel::createContext(&settings);
    Scene scene(side);
    const zel_face face{.rect = {0.72f, 0.3f, 0.25f, 0.4f}, .points = {}, .confidence = 1, .guessed = {}};
    const auto faces = libzel::made<libzel::Faces>(
        [&](zel_faces** out) { return zel_faces_create(&face, 1, scene.width, scene.height, out); });
    const libzel::Values values{{"blurLevel", level},
                                {"resolution", resolution},
                                {"highlights", "0"},
                                {"intensity", "0"},
                                {"subject", "none"}};
    const zel_pixels picture{scene.rgba.data(), scene.width, scene.height, 0, ZEL_RGBA8, 0};
    const zel_pixels depth{scene.depth.data(), Scene::kDepthWidth, Scene::kDepthHeight, 0, ZEL_GRAY8, 0};
    auto inputs = libzel::sized<zel_inputs>();
    inputs.values = values.list().data();
    inputs.value_count = values.list().size();
    inputs.faces = faces.get();
    inputs.depth = &depth;
    libzel::require(zel_apply(context.get(), "defocus", &picture, &inputs));
    return {radiusAt(scene, scene.rgba, 0.25), radiusAt(scene, scene.rgba, 0.75)};
}

// The strongest blur once was bounded by pixels, which took a fifth of it from pictures of 12 megapixels; weak blurs
// of small copies were rounded away. A side of 720 is one at which the exported render has a rule of its own.
TEST(DefocusSizes, ReducedCopiesAreBlurredByTheSameShare) {
    for (const char* level : {"20", "40", "60", "100"}) {
        const Radii whole = radiiAt(3200, level, "full");
        EXPECT_GT(whole.far, 1.5 * whole.near) << level;
        for (const auto& [side, resolution] :
             {std::pair{3200, "preview"}, {1600, "full"}, {800, "full"}, {720, "full"}}) {
            const Radii copy = radiiAt(side, level, resolution);
            EXPECT_NEAR(copy.far / whole.far, 1, 0.06) << level << ", " << side << ' ' << resolution;
            EXPECT_NEAR(copy.near / whole.near, 1, 0.25) << level << ", " << side << ' ' << resolution;
        }
    }
    EXPECT_GT(radiiAt(1600, "100", "full").far, 1.3 * radiiAt(1600, "60", "full").far);
}

}  // namespace
