// The reshapers beside remaps of the box that they change, the map made beforehand: a bilinear one, and a
// bicubic one, which takes sixteen taps a pixel as the reshapers do. The remaps read and write every pixel of
// the box, the reshapers only what moves.
#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "ZelEffectsCore/ZelEffect/FaceSlimRender/faceMeshWarp.h"
#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"
#include "benchPicture.h"
#include "facepoints/faceTemplate.h"
#include "zel_effects/zel_effects.h"

namespace {

using zelbench::Size;
using zellab::Vector2f;

/// One upright face in the picture's middle, a third of the picture high from chin to hairline.
void addFace(Size size, zellab::CInterFacePoint& points) {
    const auto& t = zellab::kTemplateLandmarks;
    constexpr float kEyesToChin = 1.8f;  // chin to hairline against chin to eyes, both along y
    const float scaleY = static_cast<float>(size.height) / 3.0f / ((t[0].y - t[24].y) * kEyesToChin);
    const float scaleX = scaleY * 9.0f / 16.0f;  // the template is that of a tall picture
    std::array<Vector2f, 83> landmarks;
    for (std::size_t i = 0; i < landmarks.size(); ++i)
        landmarks[i] = {static_cast<float>(size.width) / 2 + (t[i].x - t[64].x) * scaleX,
                        static_cast<float>(size.height) / 2 + (t[i].y - t[64].y) * scaleY};
    points.AddFace(landmarks.data(), 0);
    points.SetFaceCount(1);
}

/// The box of the mesh's outermost ring.
cv::Rect meshBox(const zellab::CInterFacePoint& points, Size size) {
    const zellab::FaceMeshWarp mesh(points.GetInterPoints(0));
    float left = 1e9f, top = 1e9f, right = 0, bottom = 0;
    for (std::uint16_t vertex : zellab::FaceMeshWarp::triangles()) {
        const Vector2f v = mesh.source()[vertex];
        left = std::min(left, v.x);
        top = std::min(top, v.y);
        right = std::max(right, v.x);
        bottom = std::max(bottom, v.y);
    }
    const cv::Rect box(static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left) + 1,
                       static_cast<int>(bottom - top) + 1);
    return box & cv::Rect(0, 0, size.width, size.height);
}

void remapBox(benchmark::State& state, Size size, const cv::Rect& box, int taps) {
    auto pixels = zelbench::benchRgba(size);
    const cv::Mat picture(size.height, size.width, CV_8UC4, pixels.data());
    cv::Mat target(box.size(), CV_8UC4), mapX(box.size(), CV_32F), mapY(box.size(), CV_32F);
    for (int y = 0; y < box.height; ++y)
        for (int x = 0; x < box.width; ++x) {
            // A gentle bulge.
            const float dx = static_cast<float>(x) / static_cast<float>(box.width) - 0.5f;
            const float dy = static_cast<float>(y) / static_cast<float>(box.height) - 0.5f;
            const float pull = 0.1f * std::max(0.0f, 0.25f - dx * dx - dy * dy);
            mapX.at<float>(y, x) = static_cast<float>(box.x + x) - dx * pull * static_cast<float>(box.width);
            mapY.at<float>(y, x) = static_cast<float>(box.y + y) - dy * pull * static_cast<float>(box.height);
        }
    for (auto _ : state) {
        cv::remap(picture, target, mapX, mapY, taps, cv::BORDER_REPLICATE);
        benchmark::ClobberMemory();
    }
    state.counters["MP/s"] = benchmark::Counter(static_cast<double>(state.iterations()) * box.area() / 1e6,
                                                benchmark::Counter::kIsRate);
}

void BM_autoSlimFace(benchmark::State& state) {
    const Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    zellab::CInterFacePoint points;
    addFace(size, points);
    auto pixels = zelbench::benchRgba(size);
    for (auto _ : state)
        CFaceSlimRender::autoSlimFace(pixels.data(), size.width, size.height, &points, 0.5f, 0);
    state.counters["MP/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * meshBox(points, size).area() / 1e6,
                           benchmark::Counter::kIsRate);
}

void BM_autoSlimFaceRemap(benchmark::State& state, int taps) {
    const Size size = zelbench::sizeOf(state.range(0));
    cv::setNumThreads(static_cast<int>(state.range(1)));
    zellab::CInterFacePoint points;
    addFace(size, points);
    remapBox(state, size, meshBox(points, size), taps);
}

void BM_autoZoomEye(benchmark::State& state) {
    const Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    zellab::CInterFacePoint points;
    addFace(size, points);
    auto pixels = zelbench::benchRgba(size);
    for (auto _ : state)
        CEyeZoomRender::autoZoomEye(pixels.data(), size.width, size.height, &points, 0.5f, 0);
}

/// Radius of the brush rows in pixels; their cost does not follow the picture's size.
constexpr int kBrush = 150;

void stroke(benchmark::State& state, int mode, int length) {
    const Size size = zelbench::sizeOf(state.range(0));
    const zellab::WorkerCount workers(static_cast<int>(state.range(1)));
    auto pixels = zelbench::benchRgba(size);
    zellab::CLiquify brush;
    brush.setImage({pixels.data(), size.width, size.height});
    brush.setRadius(kBrush);
    brush.setStrength(60);
    const int x = size.width / 2, y = size.height / 2;
    for (auto _ : state) brush.apply(x + length, y, x, y, mode);
}
void BM_bulge(benchmark::State& state) {
    stroke(state, 0, 0);
}
void BM_push(benchmark::State& state) {
    stroke(state, 2, kBrush);
}
void BM_bulgeRemap(benchmark::State& state, int taps) {
    const Size size = zelbench::sizeOf(state.range(0));
    cv::setNumThreads(static_cast<int>(state.range(1)));
    remapBox(state, size, {size.width / 2 - kBrush, size.height / 2 - kBrush, 2 * kBrush, 2 * kBrush}, taps);
}

void reshapeRow(benchmark::internal::Benchmark* row) {
    row->ArgNames({"MP", "threads"})->ArgsProduct({{1, 12}, {1, 2}});
    row->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(BM_autoSlimFace)->Name("auto_slim_face/zel")->Apply(reshapeRow);
BENCHMARK_CAPTURE(BM_autoSlimFaceRemap, linear, cv::INTER_LINEAR)
    ->Name("auto_slim_face/opencv_remap_of_the_box")
    ->Apply(reshapeRow);
BENCHMARK_CAPTURE(BM_autoSlimFaceRemap, cubic, cv::INTER_CUBIC)
    ->Name("auto_slim_face/opencv_cubic_remap_of_the_box")
    ->Apply(reshapeRow);
BENCHMARK(BM_autoZoomEye)->Name("auto_zoom_eye/zel")->Apply(reshapeRow);
BENCHMARK(BM_bulge)->Name("liquify_bulge/zel")->Apply(reshapeRow);
BENCHMARK_CAPTURE(BM_bulgeRemap, linear, cv::INTER_LINEAR)
    ->Name("liquify_bulge/opencv_remap_of_the_box")
    ->Apply(reshapeRow);
BENCHMARK_CAPTURE(BM_bulgeRemap, cubic, cv::INTER_CUBIC)
    ->Name("liquify_bulge/opencv_cubic_remap_of_the_box")
    ->Apply(reshapeRow);
BENCHMARK(BM_push)->Name("liquify_push/zel")->Apply(reshapeRow);

}  // namespace
