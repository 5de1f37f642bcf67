// The floor of every comparison: a plain copy of the picture on one thread.
#include <cstring>

#include "benchPicture.h"

namespace {

void BM_memcpy(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const auto source = zelbench::benchRgba(size);
    auto target = source;
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}
BENCHMARK(BM_memcpy)
    ->Name("memcpy")
    ->ArgName("MP")
    ->Arg(1)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
