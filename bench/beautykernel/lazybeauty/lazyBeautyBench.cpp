// The skin smoother on a picture with one face, beside a plain copy of the picture.
#include <filesystem>

#include "beautykernel/lazybeauty/lazybeauty.h"
#include "benchPicture.h"

namespace {

/// A large camera picture, to show how the cost grows.
constexpr int kMegapixels48 = 48;

zelbench::Size sizeFor(std::int64_t megapixels) {
    return megapixels >= kMegapixels48 ? zelbench::Size{8000, 6000} : zelbench::sizeOf(megapixels);
}

zellab::FaceData oneFace(zelbench::Size size) {
    zellab::FaceData face;
    face.left = size.width / 3, face.right = size.width * 2 / 3;
    face.top = size.height / 5, face.bottom = size.height * 4 / 5;
    return face;
}

void lazyBeauty(benchmark::State& state) {
    const zelbench::Size size = sizeFor(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    const zellab::FaceData face = oneFace(size);
    std::filesystem::current_path(ZEL_ASSETS);
    zelbench::runOnFreshPicture(state, size, zelbench::skinRgba(size), [&](unsigned char* image) {
        if (!zellab::CLazyBeauty().run({image, size.width, size.height}, {}, &face))
            state.SkipWithError("the assets are missing");
    });
}

void copy(benchmark::State& state) {
    const zelbench::Size size = sizeFor(state.range(0));
    zelbench::copyPicture(state, size, zelbench::skinRgba(size));
}

BENCHMARK(lazyBeauty)
    ->Name("lazy_beauty/run")
    ->ArgNames({"MP", "threads"})
    ->ArgsProduct({{zelbench::kMegapixels1, zelbench::kMegapixels12, kMegapixels48}, {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(copy)
    ->Name("lazy_beauty/memcpy")
    ->ArgNames({"MP", "threads"})
    ->ArgsProduct({{zelbench::kMegapixels1, zelbench::kMegapixels12, kMegapixels48}, {1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
