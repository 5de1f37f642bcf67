// The portrait scenario on 12 megapixels with one face, whole and by its stages.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>

#include "beautykernel/lazybeauty/lazybeauty.h"
#include "facepoints/faceData.h"
#include "frame/processorCount.h"
#include "libzel/faces/faceRecords.h"
#include "portrait/portrait.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/imageproc/core/mixByAlpha.h"

namespace {

constexpr int kWidth = 3000, kHeight = 4000, kFace = 0;
constexpr float kAlpha = 0.6f;

/// What the stages work on; drawn once.
struct Scene {
    zel::Portrait portrait;
    std::unique_ptr<zellab::CInterFacePoint> points;
    CGRect rect;
    std::vector<unsigned char> lookup;
    zel::FaceInfoBlock info;
    Scene()
        : portrait([] {
              zel::PortraitParams params;
              params.width = kWidth;
              params.height = kHeight;
              params.moles = 12;
              params.darkCircles = 0.6;
              return zel::drawPortrait(params);
          }()),
          points(zel::makeFacePoints(portrait.faces, kWidth, kHeight)),
          rect(zel::faceRectInPixels(portrait.faces.faces[0], kWidth, kHeight)),
          lookup(64 * 64 * 4, 128),
          info(portrait.faces) {
        std::filesystem::current_path(ZEL_ASSETS);
    }
};

using Stage = void (*)(Scene&, unsigned char* image);

void run(benchmark::State& state, Stage stage) {
    static Scene scene;
    const zellab::WorkerCount workers(static_cast<int>(state.range(0)));
    std::vector<unsigned char> image;
    for (auto _ : state) {
        state.PauseTiming();
        image = scene.portrait.image.rgba;
        state.ResumeTiming();
        stage(scene, image.data());
    }
}

void slim(Scene& s, unsigned char* image) {
    CFaceSlimRender::autoSlimFace(image, kWidth, kHeight, s.points.get(), 0.5f, 0.35f, 0.7f, 0.6f, 0.2f, 0.4f,
                                  0.34f, -0.5f, kFace);
}
void eyes(Scene& s, unsigned char* image) {
    CEyeZoomRender::autoZoomEye(image, kWidth, kHeight, s.points.get(), 0.4f, 0.9f, 0.2f, 1.0f, kFace);
}
void circles(Scene& s, unsigned char* image) {
    CGRect rect = s.rect;
    ZelImageCore::TableSkin::ImageProcessWithAutoRemoveBlackCircle(image, kWidth, kHeight, rect,
                                                                   s.points.get(), kFace, 0.55f, 0);
}
void skin(Scene& s, unsigned char* image) {
    zellab::FaceData face = zellab::makeFaceData(s.rect, *s.points, kFace, kWidth, kHeight);
    zellab::CLazyBeauty().run({image, kWidth, kHeight}, {}, &face);
}
void look(Scene& s, unsigned char* image) {
    zellab::ApplyColorCube({image, kWidth, kHeight}, s.lookup.data());
}
void mix(Scene& s, unsigned char* image) {
    zellab::MixByAlpha({image, kWidth, kHeight}, {s.portrait.image.rgba.data(), kWidth, kHeight},
                       {image, kWidth, kHeight}, kAlpha);
}
void whole(Scene& s, unsigned char* image) {
    ZelImageCore::CScenarioBeauty().Run(image, kWidth, kHeight, ZelImageCore::eScenario2, kAlpha,
                                        s.lookup.data(), s.info.get());
}

void threads(benchmark::internal::Benchmark* row) {
    row->ArgName("threads")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK_CAPTURE(run, slim, slim)->Name("portrait_12MP/slim_face")->Apply(threads);
BENCHMARK_CAPTURE(run, eyes, eyes)->Name("portrait_12MP/zoom_eyes")->Apply(threads);
BENCHMARK_CAPTURE(run, circles, circles)->Name("portrait_12MP/dark_circles")->Apply(threads);
BENCHMARK_CAPTURE(run, skin, skin)->Name("portrait_12MP/skin")->Apply(threads);
BENCHMARK_CAPTURE(run, look, look)->Name("portrait_12MP/look")->Apply(threads);
BENCHMARK_CAPTURE(run, mix, mix)->Name("portrait_12MP/mix")->Apply(threads);
BENCHMARK_CAPTURE(run, whole, whole)->Name("portrait_12MP/whole")->Apply(threads);

}  // namespace
