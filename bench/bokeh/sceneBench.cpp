// One render of depth of field from end to end, and its stages one by one, on whatever draws OpenGL here.
#include <sys/resource.h>

#include <memory>

#include "bokeh/bokehScene.h"
#include "bokeh/cpuTiles.h"
#include "bokeh/passes.h"
#include "bokehBench.h"
#include "frame/zel_effects.h"
#include "gl/environment.h"
#include "gl/utils.h"
#include "zellab/imageproc/guidedFilterPlane.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace {

using namespace zellab::Bokeh;
using zellab::gl::EnvironmentHolder;
using Bytes = std::vector<unsigned char>;

constexpr char kResources[] = ZEL_ASSETS "/bokeh";

/// Depth of a person in the middle before a far ground.
Bytes benchDepth(zelbench::Size size) {
    Bytes depth = zelbench::benchRadii(size, 28);
    for (auto& d : depth) d = d == 0 ? 210 : static_cast<unsigned char>(60 - d);
    return depth;
}

/// A context, the pictures of one render at 1 or 12 megapixels and the textures between its stages.
struct Stages {
    explicit Stages(benchmark::State& benchmarkState)
        : state(benchmarkState),
          size(zelbench::sizeOf(state.range(0))),
          small(zelbench::workingSizeOf(state.range(0))) {
        environment.makeCurrent();
        usable = zellab::gl::Utils::initializeGlew() && shaders.load(kResources);
        if (!usable) {
            state.SkipWithError("no OpenGL 3.3, or no shaders");
            return;
        }
        photograph = texture(size, pixels.data());
        working = texture(small, smallPixels.data());
        blurred = texture(small, smallPixels.data());
        finished = texture(size, pixels.data());
        radius = {small.width, small.height, kOrderRed, kTypeByte, radii.data()};
        hair = {size.width / 2, size.height / 2, kOrderRed, kTypeByte, nullptr};
    }
    ~Stages() { shaders.release(); }

    static Texture2D texture(zelbench::Size size, const unsigned char* pixels) {
        return {size.width, size.height, kOrderRgba, kTypeByte, pixels};
    }
    /// Repeats a stage; one pixel of what it drew is read back, so that the driver has finished.
    template <typename Stage>
    void repeat(const Texture2D& target, Stage stage) {
        unsigned char last[4] = {};
        for (auto _ : state) {
            if (!stage()) return state.SkipWithError("the stage failed");
            if (!target.isEmpty()) target.read(0, 0, 1, 1, last);
            benchmark::DoNotOptimize(last);
        }
    }

    benchmark::State& state;
    const EnvironmentHolder environment{0, nullptr, true};
    ShaderCache shaders;
    bool usable = false;
    zelbench::Size size, small;
    Bytes pixels = zelbench::benchRgba(size), smallPixels = zelbench::benchRgba(small),
          radii = zelbench::benchRadii(small, 28);
    Texture2D photograph, working, blurred, finished, radius, hair;
};

void sizes(benchmark::internal::Benchmark* row) {
    row->ArgName("MP")->Arg(1)->Arg(12)->Unit(benchmark::kMillisecond)->UseRealTime();
}

/// The whole operation as a host calls it, with the depth given.
void BM_renderWhole(benchmark::State& state) {
    const EnvironmentHolder environment(0, nullptr, true);
    environment.makeCurrent();
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    Bytes pixels = zelbench::benchRgba(size), depth = benchDepth(size), strip;
    for (const unsigned char level : zelbench::benchStrip())
        strip.insert(strip.end(), {level, level, level, 255});
    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath("", kResources);
    render.SetBokehImage("disc", strip.data(), kStripWidth, kStripHeight);
    render.SetDepthPlane(depth.data(), size.width, size.height);
    float face[4] = {0.4f, 0.4f, 0.2f, 0.2f};
    for (auto _ : state)
        if (!render.Run(pixels.data(), size.width, size.height, 1, face, 0.5f, 0.5f, 60, 1.0f, false, true,
                        1.0f, 0.5f, 0.0f))
            return state.SkipWithError("nothing was rendered");
    zelbench::countPixels(state, size);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak MiB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}
BENCHMARK(BM_renderWhole)->Name("bokeh_render/whole")->Apply(sizes);

void BM_upload(benchmark::State& state) {
    Stages s(state);
    if (s.usable)
        s.repeat(s.photograph, [&] {
            s.photograph =
                Texture2D(s.size.width, s.size.height, s.size.width, kOrderRgba, kTypeByte, s.pixels.data());
            return true;
        });
}
BENCHMARK(BM_upload)->Name("bokeh_render/1_upload")->Apply(sizes);

void BM_shrink(benchmark::State& state) {
    Stages s(state);
    if (s.usable)
        s.repeat({}, [&] {
            return downscale(s.shaders, s.photograph, s.working) &&
                   s.working.read(0, 0, s.small.width, s.small.height, s.smallPixels.data());
        });
}
BENCHMARK(BM_shrink)->Name("bokeh_render/2_shrink")->Apply(sizes);

void BM_disparity(benchmark::State& state) {
    Stages s(state);
    const Bytes depth = benchDepth(s.size);
    Bytes plane = s.radii;
    if (s.usable)
        s.repeat({}, [&] {
            DisparityMap map;
            map.set({depth.data(), s.size.width, s.size.height});
            zellab::scalePlane(map.view().data, map.width(), map.height(), plane.data(), s.small.width,
                               s.small.height, zellab::YuvFilter::box);
            zellab::GuidedFilterPlane(plane.data(), s.smallPixels.data(), s.small.width, s.small.height, 1,
                                      0.1f, 4.0f);
            return true;
        });
}
BENCHMARK(BM_disparity)->Name("bokeh_render/3_disparity")->Apply(sizes);

void BM_convolve(benchmark::State& state) {
    Stages s(state);
    const Bytes strip = zelbench::benchStrip();
    const LookValues look = lookValues({1.0f, 0.5f, 1.0f, 0.0f});
    const ConvolutionSource processor{{s.smallPixels.data(), s.small.width, s.small.height},
                                      {s.radii.data(), s.small.width, s.small.height},
                                      kMaxRadius,
                                      {strip.data(), kStripWidth, kStripHeight},
                                      {},
                                      look};
    if (!s.usable) return;
    const Texture2D kernel(kStripWidth, kStripHeight, kOrderRed, kTypeByte, strip.data());
    const Texture2D weights(s.small.width, s.small.height, kOrderRed, kTypeFloat, nullptr);
    const bool cpuOnly = rendersOnProcessor();
    s.repeat(s.blurred, [&] {
        return ratio(s.shaders, s.working, look, weights) &&
               convolve(s.shaders, {s.working, kernel, weights, s.radius}, processor, cpuOnly, s.blurred);
    });
}
BENCHMARK(BM_convolve)->Name("bokeh_render/4_convolve")->Apply(sizes);

void BM_smooth(benchmark::State& state) {
    Stages s(state);
    if (s.usable) s.repeat(s.working, [&] { return smoothCopy(s.shaders, s.blurred, s.working); });
}
BENCHMARK(BM_smooth)->Name("bokeh_render/5_smooth_copy")->Apply(sizes);

void BM_compose(benchmark::State& state) {
    Stages s(state);
    if (!s.usable) return;
    const Texture2D noise = makeNoiseTexture();
    s.repeat(s.finished, [&] {
        return compose(s.shaders, {s.blurred, noise, s.photograph, s.radius, s.radius}, 0.0f, 2.28f,
                       s.finished);
    });
}
BENCHMARK(BM_compose)->Name("bokeh_render/6_compose")->Apply(sizes);

void BM_hair(benchmark::State& state) {
    Stages s(state);
    if (s.usable)
        s.repeat(s.photograph, [&] { return composeHair(s.shaders, s.finished, s.hair, s.photograph); });
}
BENCHMARK(BM_hair)->Name("bokeh_render/7_hair")->Apply(sizes);

void BM_readback(benchmark::State& state) {
    Stages s(state);
    if (s.usable)
        s.repeat({}, [&] { return s.photograph.read(0, 0, s.size.width, s.size.height, s.pixels.data()); });
}
BENCHMARK(BM_readback)->Name("bokeh_render/8_readback")->Apply(sizes);

}  // namespace
