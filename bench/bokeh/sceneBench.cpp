// One render of depth of field from end to end, by each back end, and those of its stages that are no pass, on
// whatever draws OpenGL here. passesBench.cpp times the passes.
#include <sys/resource.h>

#include "bokeh/disparityMap.h"
#include "bokehBench.h"
#include "gl/environment.h"
#include "gl/texture2D.h"
#include "gl/utils.h"
#include "peerThreads.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/edgeaware/guidedFilterPlane.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace {

using namespace zellab::Bokeh;
using zellab::gl::EnvironmentHolder;
using Bytes = std::vector<unsigned char>;

/// Depth of a person in the middle before a far ground.
Bytes benchDepth(zelbench::Size size) {
    Bytes depth = zelbench::benchRadii(size, 28);
    for (auto& d : depth) d = d == 0 ? 210 : static_cast<unsigned char>(60 - d);
    return depth;
}

void sizes(benchmark::internal::Benchmark* row) {
    row->ArgName("MP")->Arg(1)->Arg(12)->Unit(benchmark::kMillisecond)->UseRealTime();
}

/// The whole operation as a host calls it, with the depth given. The counter is the process's largest memory
/// so far.
void renderWhole(benchmark::State& state, bool onProcessor) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    Bytes pixels = zelbench::benchRgba(size), depth = benchDepth(size), strip;
    for (const unsigned char level : zelbench::benchStrip())
        strip.insert(strip.end(), {level, level, level, 255});
    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath("", ZEL_ASSETS "/bokeh");
    render.SetBokehImage("disc", strip.data(), kStripWidth, kStripHeight);
    render.SetDepthPlane(depth.data(), size.width, size.height);
    render.DrawOnProcessor(onProcessor);
    float face[4] = {0.4f, 0.4f, 0.2f, 0.2f};
    for (auto _ : state) {
        render.Run(pixels.data(), size.width, size.height, 1, face, 0.5f, 0.5f, 60, 1.0f, false, true, 1.0f,
                   0.5f, 0.0f);
        if (render.LastOutcome() != DefocusCore::ZelDepthDefocusRender::Outcome::drawn)
            return state.SkipWithError("nothing was rendered");
    }
    zelbench::countPixels(state, size);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak MiB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}
void renderOnProcessor(benchmark::State& state) {
    const zelbench::SameThreads threads(state);
    renderWhole(state, true);
}
void renderByOpenGl(benchmark::State& state) {
    const EnvironmentHolder environment(0, nullptr, true);
    environment.makeCurrent();
    renderWhole(state, false);
}
BENCHMARK(renderOnProcessor)->Name("bokeh_render/own")->Apply(zelbench::sizesAndThreads);
BENCHMARK(renderByOpenGl)->Name("bokeh_render/opengl")->Apply(sizes);

/// The photograph becomes a texture; reading one pixel makes the driver finish.
void upload(benchmark::State& state) {
    const EnvironmentHolder environment(0, nullptr, true);
    environment.makeCurrent();
    if (!zellab::gl::Utils::initializeGlew()) return state.SkipWithError("no OpenGL 3.3");
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const Bytes pixels = zelbench::benchRgba(size);
    unsigned char last[4] = {};
    for (auto _ : state) {
        const Texture2D texture(size.width, size.height, size.width, kOrderRgba, kTypeByte, pixels.data());
        texture.read(0, 0, 1, 1, last);
        benchmark::DoNotOptimize(last);
    }
}
BENCHMARK(upload)->Name("bokeh_render/upload")->Apply(sizes);

/// The depth map cut, scaled to the working picture and drawn to its edges.
void disparity(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0)),
                         small = zelbench::workingSizeOf(state.range(0));
    const Bytes depth = benchDepth(size), guide = zelbench::benchRgba(small);
    Bytes plane = benchDepth(small);
    for (auto _ : state) {
        DisparityMap map;
        map.set({depth.data(), size.width, size.height});
        zellab::scalePlane(map.view(), {plane.data(), small.width, small.height}, zellab::YuvFilter::box);
        zellab::GuidedFilterPlane({plane.data(), small.width, small.height},
                                  {guide.data(), small.width, small.height}, 1, 0.1f, 4.0f);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(disparity)->Name("bokeh_render/disparity")->Apply(sizes);

}  // namespace
