// The vignette beside a plain copy of the picture.
#include "beautykernel/vignette/vignette.h"

#include "benchPicture.h"

namespace {

void ours(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    zelbench::runOnFreshPicture(state, size, zelbench::benchRgba(size), [&](unsigned char* image) {
        zellab::vignette({image, size.width, size.height}, {});
    });
}

void copy(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    zelbench::copyPicture(state, size, zelbench::benchRgba(size));
}

[[maybe_unused]] const bool kRegistered = [] {
    zelbench::addSizedRow("vignette/ours", ours, {1, 2});
    zelbench::addSizedRow("vignette/memcpy", copy, {1});
    return true;
}();

}  // namespace
