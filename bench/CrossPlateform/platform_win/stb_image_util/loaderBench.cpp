// Flattening onto white, beside a blend of the same picture onto white by the YUV library.
#include <libyuv.h>

#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"
#include "benchPicture.h"

namespace {

void flattenOurs(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    auto pixels = zelbench::benchRgba(size);
    auto flat = pixels;
    for (auto _ : state) {
        zellab::flattenOntoWhite({pixels.data(), size.width, size.height},
                                 {flat.data(), size.width, size.height});
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}

void flattenYuv(benchmark::State& state) {
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const auto pixels = zelbench::benchRgba(size);
    const std::vector<unsigned char> white(pixels.size(), 255);
    auto flat = pixels;
    for (auto _ : state) {
        libyuv::ARGBBlend(pixels.data(), size.width * 4, white.data(), size.width * 4, flat.data(),
                          size.width * 4, size.width, size.height);
        benchmark::ClobberMemory();
    }
    zelbench::countPixels(state, size);
}

const auto* const kOurs = benchmark::RegisterBenchmark("flatten/ours", flattenOurs)
                              -> ArgNames({"MP", "threads"}) -> ArgsProduct({{1, 12}, {1, 2}})
                                  -> Unit(benchmark::kMillisecond) -> UseRealTime();
const auto* const kYuv = benchmark::RegisterBenchmark("flatten/libyuv_blend", flattenYuv)
                             -> ArgNames({"MP", "threads"}) -> ArgsProduct({{1, 12}, {1}})
                                 -> Unit(benchmark::kMillisecond) -> UseRealTime();

}  // namespace
