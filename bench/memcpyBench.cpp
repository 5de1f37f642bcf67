// The floor of every comparison: a plain copy of the picture on one thread.
#include "benchPicture.h"

namespace {

/// Rows that name no number of threads run on one, as their peers do.
[[maybe_unused]] const zellab::WorkerCount kOneThread(1);

void BM_memcpy(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    zelbench::copyPicture(state, size, zelbench::benchRgba(size));
}
BENCHMARK(BM_memcpy)
    ->Name("memcpy")
    ->ArgName("MP")
    ->Arg(1)
    ->Arg(12)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
