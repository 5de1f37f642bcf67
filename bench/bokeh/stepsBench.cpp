// Each step of a render by the processor's own loops, at the sizes of a 1 and a 12 megapixel photograph.
#include "bokeh/boxScale.h"
#include "bokeh/composition.h"
#include "bokeh/cpuTiles.h"
#include "bokeh/passTables.h"
#include "bokeh/smoothRows.h"
#include "bokehBench.h"
#include "peerThreads.h"

namespace {

using namespace zellab::Bokeh;
using Bytes = std::vector<unsigned char>;

constexpr int kLargestRadius = 28;  // working pixels

/// What the steps of one render read and write.
struct Steps {
    explicit Steps(std::int64_t megapixels)
        : full(zelbench::sizeOf(megapixels)),
          small(zelbench::workingSizeOf(megapixels)),
          photograph(zelbench::benchRgba(full)),
          finished(photograph.size()),
          working(zelbench::benchRgba(small)),
          blurred(working.size()),
          radii(zelbench::benchRadii(small, kLargestRadius)),
          fullRadii(radii),
          strip(zelbench::benchStrip()),
          noise(noisePixels()),
          grain(grainMap(view(photograph, full))) {
        for (auto& radius : fullRadii) radius = static_cast<unsigned char>(radius * full.width / small.width);
    }
    static zellab::ImageView view(Bytes& pixels, zelbench::Size size) {
        return {pixels.data(), size.width, size.height};
    }

    zelbench::Size full, small;
    Bytes photograph, finished, working, blurred, radii, fullRadii, strip;
    NoiseTile noise;
    GrainMap grain;
};

void shrink(Steps& s) {
    boxScale(s.view(s.photograph, s.full), s.view(s.blurred, s.small));
}
void convolveSmall(Steps& s) {
    convolvePicture({.image = s.view(s.working, s.small),
                     .radius = {s.radii.data(), s.small.width, s.small.height},
                     .maximumRadius = kLargestRadius,
                     .kernel = {s.strip.data(), kStripWidth, kStripHeight},
                     .spin = {},
                     .look = lookValues({1.0f, 0.5f, 1.0f, 0.0f})},
                    s.view(s.blurred, s.small));
}
void smooth(Steps& s) {
    smoothPicture(s.view(s.working, s.small), s.view(s.blurred, s.small));
}
void measureGrain(Steps& s) {
    s.grain = grainMap(s.view(s.photograph, s.full));
}
void composeAll(Steps& s) {
    composePicture({.photograph = s.view(s.photograph, s.full),
                    .soft = s.view(s.working, s.small),
                    .radius = {s.fullRadii.data(), s.small.width, s.small.height},
                    .scaleRatio = static_cast<float>(s.full.width) / static_cast<float>(s.small.width),
                    .hair = {},
                    .grain = &s.grain,
                    .noise = &s.noise},
                   s.view(s.finished, s.full));
}

void timeStep(benchmark::State& state, void (*step)(Steps&)) {
    const zelbench::SameThreads threads(state);
    Steps steps(state.range(0));
    for (auto _ : state) {
        step(steps);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, steps.full);
}
BENCHMARK_CAPTURE(timeStep, shrink, shrink)->Name("bokeh_step/shrink")->Apply(zelbench::sizesAndThreads);
BENCHMARK_CAPTURE(timeStep, convolve, convolveSmall)
    ->Name("bokeh_step/convolve")
    ->Apply(zelbench::sizesAndThreads);
BENCHMARK_CAPTURE(timeStep, smooth, smooth)->Name("bokeh_step/smooth")->Apply(zelbench::sizesAndThreads);
BENCHMARK_CAPTURE(timeStep, grain, measureGrain)->Name("bokeh_step/grain")->Apply(zelbench::sizesAndThreads);
BENCHMARK_CAPTURE(timeStep, compose, composeAll)
    ->Name("bokeh_step/compose")
    ->Apply(zelbench::sizesAndThreads);

}  // namespace
