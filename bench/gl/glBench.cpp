// What a render pays for OpenGL before it draws: a context, and the road of the pixels there and back.
#include "benchPicture.h"
#include "gl/environment.h"
#include "gl/texture2D.h"
#include "gl/utils.h"

namespace {

using zellab::Bokeh::Texture2D;
using zellab::gl::EnvironmentHolder;

/// False, with the row marked, where no context can be had.
bool enter(benchmark::State& state, const EnvironmentHolder& holder) {
    holder.makeCurrent();
    const bool usable = zellab::gl::Utils::initializeGlew();
    if (!usable) state.SkipWithError("no OpenGL 3.3");
    return usable;
}

void BM_glContext(benchmark::State& state) {
    for (auto _ : state) {
        const EnvironmentHolder holder(0, nullptr, true);
        if (!enter(state, holder)) return;
    }
}

/// One pixel is read back, so that the driver has finished.
void BM_glUpload(benchmark::State& state) {
    const EnvironmentHolder holder(0, nullptr, true);
    if (!enter(state, holder)) return;
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const auto pixels = zelbench::benchRgba(size);
    const Texture2D texture(size.width, size.height, zellab::Bokeh::kOrderRgba, zellab::Bokeh::kTypeByte,
                            pixels.data());
    unsigned char last[4];
    for (auto _ : state) {
        texture.write(0, 0, size.width, size.height, pixels.data());
        texture.read(size.width - 1, size.height - 1, 1, 1, last);
        benchmark::DoNotOptimize(last);
    }
    zelbench::countPixels(state, size);
}

void BM_glReadback(benchmark::State& state) {
    const EnvironmentHolder holder(0, nullptr, true);
    if (!enter(state, holder)) return;
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    auto pixels = zelbench::benchRgba(size);
    const Texture2D texture(size.width, size.height, zellab::Bokeh::kOrderRgba, zellab::Bokeh::kTypeByte,
                            pixels.data());
    for (auto _ : state) {
        texture.read(0, 0, size.width, size.height, pixels.data());
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}

BENCHMARK(BM_glContext)->Name("gl_context")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_glUpload)
    ->Name("gl_upload")
    ->ArgName("MP")
    ->Arg(1)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_glReadback)
    ->Name("gl_readback")
    ->ArgName("MP")
    ->Arg(1)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
