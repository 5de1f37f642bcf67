// The simple skin operations beside a plain copy of the picture.
#include "benchPicture.h"
#include "zel_effects/zel_effects.h"

namespace {

using ZelImageCore::TableSkin;
using Operation = void (*)(unsigned char*, int, int);

constexpr int kRadius = 20, kLevel = 5;

void bright(unsigned char* image, int width, int height) {
    TableSkin::ImageProcessWithBright(image, width, height, kRadius, kLevel);
}
void mascara(unsigned char* image, int width, int height) {
    TableSkin::ImageProcessWithMascara(image, width, height, kRadius, kLevel);
}
void natureSmooth(unsigned char* image, int width, int height) {
    TableSkin::ImageProcessWithNatureSmooth(image, width, height, kRadius);
}

void effect(benchmark::State& state, Operation operation) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    zelbench::runOnFreshPicture(state, size, zelbench::benchRgba(size),
                                [&](unsigned char* image) { operation(image, size.width, size.height); });
}

void copy(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    zelbench::copyPicture(state, size, zelbench::benchRgba(size));
}

[[maybe_unused]] const bool kRegistered = [] {
    zelbench::addSizedRow("simple_skin/bright", [](benchmark::State& state) { effect(state, bright); },
                          {1, 2});
    zelbench::addSizedRow("simple_skin/mascara", [](benchmark::State& state) { effect(state, mascara); },
                          {1, 2});
    zelbench::addSizedRow("simple_skin/nature_smooth",
                          [](benchmark::State& state) { effect(state, natureSmooth); }, {1, 2});
    zelbench::addSizedRow("simple_skin/memcpy", copy, {1});
    return true;
}();

}  // namespace
