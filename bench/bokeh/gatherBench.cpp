// The processor's side of the convolution beside the plain loop with a radius a pixel.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>

#include "bokeh/bokehKernels.h"
#include "bokeh/cpuTiles.h"
#include "bokeh/weightPlane.h"
#include "bokehBench.h"
#include "frame/processorCount.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace {

using namespace zellab::Bokeh;

constexpr Look kLook{1.0f, 0.3f, 1.0f, 0.2f};

/// One picture with all that the rows read.
struct Scene {
    explicit Scene(benchmark::State& state)
        : size(zelbench::workingSizeOf(state.range(0))),
          image(zelbench::benchRgba(size)),
          radius(zelbench::benchRadii(size, static_cast<int>(state.range(1)))),
          strip(zelbench::benchStrip()),
          workers(static_cast<int>(state.range(2))) {}

    ConvolutionSource source() const {
        return {{image.data(), size.width, size.height},
                {radius.data(), size.width, size.height},
                kMaxRadius,
                {strip.data(), kStripWidth, kStripHeight},
                {},
                lookValues(kLook)};
    }

    zelbench::Size size;
    std::vector<unsigned char> image, radius, strip;
    int workers;
};

void arguments(benchmark::internal::Benchmark* row) {
    row->ArgNames({"MP", "radius", "threads"})->Unit(benchmark::kMillisecond)->UseRealTime();
    for (const int threads : {1, 2})
        for (const int radius : {10, 28}) row->Args({1, radius, threads})->Args({12, radius, threads});
}

void BM_bokehGather(benchmark::State& state) {
    const Scene scene(state);
    const ConvolutionSource source = scene.source();
    for (auto _ : state) {
        std::atomic<int> next{0};
        benchmark::DoNotOptimize(computeTiles(source, next, scene.workers));
    }
    zelbench::countPixels(state, scene.size);
}
BENCHMARK(BM_bokehGather)->Name("bokeh_gather/own")->Apply(arguments);

/// What anyone would write first: kernels by radius, weights a pixel, integer sums.
void plainRow(const Scene& scene, const std::vector<std::vector<unsigned char>>& kernels,
              const std::uint16_t* weights, int y, unsigned char* out) {
    const auto [width, height] = scene.size;
    for (int x = 0; x < width; ++x, out += 4) {
        const int r = scene.radius[static_cast<std::size_t>(y) * width + x];
        std::uint64_t sums[4] = {};
        for (int ny = std::max(y - r, 0); ny <= std::min(y + r, height - 1); ++ny)
            for (int nx = std::max(x - r, 0); nx <= std::min(x + r, width - 1); ++nx) {
                const std::size_t n = static_cast<std::size_t>(ny) * width + nx;
                const int rn = scene.radius[n];
                if (std::max(std::abs(nx - x), std::abs(ny - y)) > rn) continue;
                const auto& kernel = kernels[static_cast<std::size_t>(rn)];
                const std::uint64_t w =
                    kernel[static_cast<std::size_t>((rn - (ny - y)) * (2 * rn + 1) + rn - (nx - x))] *
                    std::uint64_t{weights[n]};
                for (std::size_t c = 0; c < 3; ++c) sums[c] += scene.image[4 * n + c] * w;
                sums[3] += w;
            }
        for (int c = 0; c < 3; ++c)
            out[c] = static_cast<unsigned char>(std::round(
                static_cast<float>(sums[c]) / static_cast<float>(std::max<std::uint64_t>(sums[3], 1))));
        out[3] = 255;
    }
}

void BM_plainLoop(benchmark::State& state) {
    const Scene scene(state);
    const StripView strip(scene.strip.data(), kStripWidth, kStripHeight);
    const zellab::WorkerCount workers(scene.workers);
    std::vector<unsigned char> out(scene.image.size());
    for (auto _ : state) {
        std::vector<std::vector<unsigned char>> kernels;
        for (int r = 0; r <= kMaxRadius; ++r) {
            auto& kernel = kernels.emplace_back();
            for (int i = 0; i < (2 * r + 1) * (2 * r + 1); ++i)
                kernel.push_back(sampleKernel(strip, 2 * r + 1, i / (2 * r + 1), i % (2 * r + 1)));
        }
        const auto weights =
            weightPlane({scene.image.data(), scene.size.width, scene.size.height}, lookValues(kLook));
        zellab::parallelRows(scene.size.height, scene.workers, [&](int begin, int end) {
            for (int y = begin; y < end; ++y)
                plainRow(scene, kernels, weights.data(), y,
                         out.data() + std::size_t{4} * scene.size.width * y);
        });
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, scene.size);
}
BENCHMARK(BM_plainLoop)->Name("bokeh_gather/plain_loop")->Apply(arguments)->Iterations(1);

}  // namespace
