// The retouch, the whitening and the whole-picture skin operation, beside a plain copy of the picture.
#include <cstring>
#include <filesystem>

#include "benchPicture.h"
#include "facepoints/faceTemplate.h"
#include "zel_effects/zel_effects.h"

namespace {

using ZelImageCore::TableSkin;
using Operation = void (*)(unsigned char*, int, int, ImageCoreFaceInfo*);

void retouch(unsigned char* image, int width, int height, ImageCoreFaceInfo* faces) {
    TableSkin::ImageProcessWithQornSkinRetouch(image, width, height, 0.7f, faces, nullptr);
}
void whitening(unsigned char* image, int width, int height, ImageCoreFaceInfo* faces) {
    float params[] = {3, 0.55f};
    TableSkin::ImageProcessWithQornSkinWhitening(image, width, height, params, faces, nullptr, nullptr);
}
void skin(unsigned char* image, int width, int height, ImageCoreFaceInfo*) {
    float params[] = {8, 7, 3, 0.2f};
    TableSkin::ImageProcessWithSkin(image, width, height, params, nullptr);
}

/// The standard face, upright in the middle of the picture.
struct OneFace {
    ImageCoreFaceInfo head{1, {0, 0}};
    ImageCoreFace face{};
    OneFace() {
        const float rect[] = {0.33f, 0.2f, 0.34f, 0.6f};
        std::memcpy(face.rect, rect, sizeof rect);
        const auto& points = zellab::kTemplateLandmarks;
        const zellab::Vector2f nose = points[64];
        const float scale = 0.12f / (points[70].x - points[24].x);  // the pupils lie 0.12 of the width apart
        for (std::size_t i = 0; i < points.size(); ++i) {
            face.points[i][0] = 0.5f + (points[i].x - nose.x) * scale;
            // The template stands in a picture of 9 to 16, this one in 4 to 3.
            face.points[i][1] = 0.5f + (points[i].y - nose.y) * scale * (16.0f / 9.0f) * (4.0f / 3.0f);
        }
    }
};

void effect(benchmark::State& state, Operation operation) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    OneFace face;
    std::filesystem::current_path(ZEL_ASSETS);
    zelbench::runOnFreshPicture(state, size, zelbench::skinRgba(size), [&](unsigned char* image) {
        operation(image, size.width, size.height, &face.head);
    });
}

void copy(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    zelbench::copyPicture(state, size, zelbench::skinRgba(size));
}

[[maybe_unused]] const bool kRegistered = [] {
    zelbench::addSizedRow("skin/qorn_retouch", [](benchmark::State& state) { effect(state, retouch); },
                          {1, 2});
    zelbench::addSizedRow("skin/qorn_whitening", [](benchmark::State& state) { effect(state, whitening); },
                          {1, 2});
    zelbench::addSizedRow("skin/whole_picture", [](benchmark::State& state) { effect(state, skin); }, {1, 2});
    zelbench::addSizedRow("skin/memcpy", copy, {1});
    return true;
}();

}  // namespace
