// The automatic repair of a face of one size on pictures of three: it should cost what the face costs.
#include <benchmark/benchmark.h>

#include <cmath>

#include "benchPicture.h"
#include "libzel/faces/faceRecords.h"
#include "portrait/portrait.h"
#include "zel_effects/zel_effects.h"

namespace {

/// A portrait of 900 by 1200 pixels in the corner of a larger picture.
struct Setting {
    zelbench::Size size;
    std::vector<unsigned char> rgba;
    std::unique_ptr<zellab::CInterFacePoint> points;
    CGRect rect;
};

Setting settingOf(std::int64_t megapixels) {
    zel::PortraitParams params;
    params.moles = 12;
    const zel::Portrait portrait = zel::drawPortrait(params);
    const int w = portrait.image.width, h = portrait.image.height;
    const zelbench::Size size = megapixels >= 48   ? zelbench::Size{8000, 6000}
                                : megapixels >= 12 ? zelbench::Size{4000, 3000}
                                                   : zelbench::Size{w, h};
    Setting setting{size, zelbench::benchRgba(size), zel::makeFacePoints(portrait.faces, w, h),
                    zel::faceRectInPixels(portrait.faces.faces[0], w, h)};
    for (int y = 0; y < h; ++y)
        std::copy_n(&portrait.image.rgba[static_cast<std::size_t>(y * w) * 4], w * 4,
                    &setting.rgba[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) * 4]);
    return setting;
}

template <int method>
void autoFaceInpaint(benchmark::State& state) {
    Setting setting = settingOf(state.range(0));
    const zellab::WorkerCount workers(1);
    const std::vector<unsigned char> source = setting.rgba;
    for (auto _ : state) {
        state.PauseTiming();
        setting.rgba = source;
        state.ResumeTiming();
        CGRect rect = setting.rect;
        ZelImageCore::TableSkin::ImageProcessWithAutoFaceInpaint(setting.rgba.data(), nullptr,
                                                                 setting.size.width, setting.size.height,
                                                                 rect, setting.points.get(), 0, method);
    }
}

void sizes(benchmark::internal::Benchmark* row) {
    row->ArgName("MP")->Arg(1)->Arg(12)->Arg(48)->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(autoFaceInpaint<0>)->Name("auto_face_inpaint/flecks")->Apply(sizes);
BENCHMARK(autoFaceInpaint<1>)->Name("auto_face_inpaint/fine")->Apply(sizes);

}  // namespace
