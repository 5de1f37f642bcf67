// The simple skin operations beside a plain copy of the picture.
#include <cstring>
#include <string>

#include "benchPicture.h"
#include "frame/zel_effects.h"

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

/// The picture is made anew for each turn, outside the timing: these operations would soon have burnt it.
void effect(benchmark::State& state, Operation operation) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    const auto source = zelbench::benchRgba(size);
    auto image = source;
    for (auto _ : state) {
        state.PauseTiming();
        image = source;
        state.ResumeTiming();
        operation(image.data(), size.width, size.height);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}

void copy(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const auto source = zelbench::benchRgba(size);
    auto target = source;
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}

template <typename Row>
void addRow(const std::string& name, const Row& row, const std::vector<std::int64_t>& threads) {
    benchmark::RegisterBenchmark(name.c_str(), row)
        ->ArgNames({"MP", "threads"})
        ->ArgsProduct({{zelbench::kMegapixels1, zelbench::kMegapixels12}, threads})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

[[maybe_unused]] const bool kRegistered = [] {
    addRow("simple_skin/bright", [](benchmark::State& state) { effect(state, bright); }, {1, 2});
    addRow("simple_skin/mascara", [](benchmark::State& state) { effect(state, mascara); }, {1, 2});
    addRow("simple_skin/nature_smooth", [](benchmark::State& state) { effect(state, natureSmooth); }, {1, 2});
    addRow("simple_skin/memcpy", copy, {1});
    return true;
}();

}  // namespace
