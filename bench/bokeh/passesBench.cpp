// Each drawing step of the defocus render at the sizes of a 1 and a 12 megapixel photograph, on whatever
// driver the machine has. A step ends when a pixel of its target has been read back.
#include <algorithm>
#include <memory>

#include "bokeh/passTables.h"
#include "bokeh/passes.h"
#include "bokehBench.h"
#include "gl/environment.h"
#include "gl/utils.h"

namespace {

using namespace zellab::Bokeh;

constexpr Look kLook{1.0f, 0.3f, 1.0f, 0.2f};
constexpr int kLargestRadius = 28;  // working pixels

/// The textures of one render, with a context that outlives them.
struct Render {
    explicit Render(std::int64_t megapixels)
        : full(zelbench::sizeOf(megapixels)),
          small(zelbench::workingSizeOf(megapixels)),
          smallPixels(zelbench::benchRgba(small)),
          radii(zelbench::benchRadii(small, kLargestRadius)),
          strip(zelbench::benchStrip()) {
        environment.makeCurrent();
        ready = zellab::gl::Utils::initializeGlew() && cache.load(ZEL_ASSETS "/bokeh");
        const std::vector<unsigned char> photograph = zelbench::benchRgba(full);
        source = {full.width, full.height, kOrderRgba, kTypeByte, photograph.data()};
        out = {full.width, full.height, kOrderRgba, kTypeByte, photograph.data()};
        working = {small.width, small.height, kOrderRgba, kTypeByte, smallPixels.data()};
        blur = {small.width, small.height, kOrderRgba, kTypeByte, smallPixels.data()};
        weights = {small.width, small.height, kOrderRed, kTypeFloat, nullptr};
        radius = {small.width, small.height, kOrderRed, kTypeByte, radii.data()};
        kernel = {kStripWidth, kStripHeight, kOrderRed, kTypeByte, strip.data()};
        noise = makeNoiseTexture();
        grain = makeGrainTexture(grainMap({photograph.data(), full.width, full.height}));
        ready = ready && ratio(cache, working, lookValues(kLook), weights);
    }

    ConvolutionSource processor() const {
        return {{smallPixels.data(), small.width, small.height},
                {radii.data(), small.width, small.height},
                kLargestRadius,
                {strip.data(), kStripWidth, kStripHeight},
                {},
                lookValues(kLook)};
    }

    zellab::gl::EnvironmentHolder environment{0, nullptr, true};
    zelbench::Size full, small;
    std::vector<unsigned char> smallPixels, radii, strip;
    bool ready = false;
    ShaderCache cache;
    Texture2D source, out, working, blur, weights, radius, kernel, noise, grain;
};

/// Times pass(render), which returns the texture that it drew into, empty when it failed.
template <typename Pass>
void timePass(benchmark::State& state, const Pass& pass) {
    Render render(state.range(0));
    if (!render.ready) return state.SkipWithError("no OpenGL");
    float pixel[4];
    for (auto _ : state)
        if (!pass(render).read(0, 0, 1, 1, pixel)) return state.SkipWithError("the pass drew nothing");
    zelbench::countPixels(state, render.full);
}

const auto kDownscalePass = [](Render& r) {
    return downscale(r.cache, r.source, r.working) ? r.working : Texture2D();
};
const auto kRatioPass = [](Render& r) {
    return ratio(r.cache, r.working, lookValues(kLook), r.weights) ? r.weights : Texture2D();
};
template <bool kCpuOnly>
Texture2D convolvePass(Render& r) {
    const ConvolutionTextures textures{r.working, r.kernel, r.weights, r.radius};
    return convolve(r.cache, textures, r.processor(), kCpuOnly, r.blur) ? r.blur : Texture2D();
}
const auto kSmoothCopyPass = [](Render& r) {
    return smoothCopy(r.cache, r.working, r.blur) ? r.blur : Texture2D();
};
const auto kComposePass = [](Render& r) {
    const CompositionTextures textures{r.blur, r.noise, r.source, r.radius, r.kernel, r.grain};
    const auto scale = static_cast<float>(r.full.width) / static_cast<float>(r.small.width);
    return compose(r.cache, textures, 0.0f, scale, kSmallBlurRadius, r.out) ? r.out : Texture2D();
};
const auto kHairPass = [](Render& r) {
    return composeHair(r.cache, r.out, r.radius, r.source) ? r.source : Texture2D();
};

void sizes(benchmark::internal::Benchmark* row) {
    row->ArgName("MP")->Arg(1)->Arg(12)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK_CAPTURE(timePass, downscale, kDownscalePass)->Name("bokeh_pass/downscale")->Apply(sizes);
BENCHMARK_CAPTURE(timePass, ratio, kRatioPass)->Name("bokeh_pass/ratio")->Apply(sizes);
BENCHMARK_CAPTURE(timePass, processor, convolvePass<true>)
    ->Name("bokeh_pass/convolve_processor")
    ->Apply(sizes);
BENCHMARK_CAPTURE(timePass, shared, convolvePass<false>)
    ->Name("bokeh_pass/convolve_opengl")
    ->Apply(sizes)
    ->Iterations(1);
BENCHMARK_CAPTURE(timePass, smoothCopy, kSmoothCopyPass)->Name("bokeh_pass/smooth_copy")->Apply(sizes);
BENCHMARK_CAPTURE(timePass, compose, kComposePass)->Name("bokeh_pass/compose")->Apply(sizes);
BENCHMARK_CAPTURE(timePass, hair, kHairPass)->Name("bokeh_pass/hair")->Apply(sizes);

}  // namespace
