// Eye brightening works on the eyes' cut-outs: a face of one size costs the same in a picture of any size.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>

#include "benchPicture.h"
#include "facepoints/faceTemplate.h"
#include "zel_effects/interFacePoint.h"
#include "zel_effects/zel_effects.h"

namespace {

using namespace zelbench;

/// A face in the middle of the picture, its pupils `apart` pixels apart.
void addFace(zellab::CInterFacePoint& points, Size size, float apart) {
    const auto& t = zellab::kTemplateLandmarks;
    const float scale = apart / (t[70].x - t[24].x);
    std::array<zellab::Vector2f, 83> landmarks;
    for (std::size_t i = 0; i < landmarks.size(); ++i)
        landmarks[i] = {static_cast<float>(size.width) / 2 + (t[i].x - t[64].x) * scale,
                        static_cast<float>(size.height) / 2 + (t[i].y - t[64].y) * scale * 16.0f / 9.0f};
    points.SetFaceCount(1);
    points.AddFace(landmarks.data(), 0);
}

/// Dark irises on light ground, so that the finder has something to find.
void paintIrises(std::vector<unsigned char>& rgba, Size size, const zellab::Vector2f* list) {
    const float radius = 0.2f * std::hypot(list[5].x - list[0].x, list[5].y - list[0].y);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int eye = 0; eye < 2; ++eye) {
                const float away = std::hypot(static_cast<float>(x) - list[169 + eye].x,
                                              static_cast<float>(y) - list[169 + eye].y);
                if (away > 4 * radius) continue;
                unsigned char* p = &rgba[(static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) +
                                          static_cast<std::size_t>(x)) *
                                         4];
                for (int c = 0; c < 3; ++c)
                    p[c] = static_cast<unsigned char>((away < radius ? 40 : 190) + p[c] % 16);
            }
}

/// @param share  of the picture's width between the pupils, or 0 for 200 pixels
void BM_eyeBright(benchmark::State& state, float share) {
    const Size size = sizeOf(state.range(0));
    zellab::CInterFacePoint points;
    addFace(points, size, share > 0 ? share * static_cast<float>(size.width) : 200.0f);
    std::vector<unsigned char> rgba = benchRgba(size);
    paintIrises(rgba, size, points.GetInterPoints(0));
    for (auto _ : state)
        ZelImageCore::TableSkin::ImageProcessWithAutoEyeBright(rgba.data(), size.width, size.height, &points,
                                                               0, 100, 0, 0, 40, 70, 0, 40, 1.0f, 0.4f, 1.0f);
    countPixels(state, size);
}
BENCHMARK_CAPTURE(BM_eyeBright, pupils_200_apart, 0.0f)
    ->Name("eye_bright/own/pupils_200_apart")
    ->Arg(kMegapixels1)
    ->Arg(kMegapixels12)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_eyeBright, pupils_a_tenth_of_the_width_apart, 0.1f)
    ->Name("eye_bright/own/pupils_a_tenth_apart")
    ->Arg(kMegapixels1)
    ->Arg(kMegapixels12)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
