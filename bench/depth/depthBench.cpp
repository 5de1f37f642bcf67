// The depth engine: the solver beside its peer on the same guide, target and confidence, the network's
// forward run, and the whole refinement. All at 384 by 384, the size of the engine's planes.
#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>
#include <opencv2/ximgproc/edge_filter.hpp>

#include "depth/depthEngine.h"
#include "depth/fastBilateralSolver.h"
#include "depth/refineDepth.h"
#include "portrait/portrait.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace {

using Bytes = std::vector<unsigned char>;
using zellab::kDepthSide;

constexpr float kSpatial = 4, kLuma = 6, kChroma = 6, kLambda = 128;
constexpr int kIterations = 8;

/// A drawn portrait, its true depth at an eighth of the size and back, and a confidence that doubts edges.
struct Scene {
    Bytes guide = Bytes(4 * kDepthSide * kDepthSide);
    Bytes depth = Bytes(kDepthSide * kDepthSide), confidence = depth;

    Scene() {
        zel::PortraitParams params;
        params.width = params.height = 2 * kDepthSide;
        const zel::Portrait portrait = zel::drawPortrait(params);
        zellab::scaleArgb({portrait.image.rgba.data(), params.width, params.height},
                          {guide.data(), kDepthSide, kDepthSide}, zellab::YuvFilter::box);
        Bytes fine(portrait.depth.size());
        for (std::size_t i = 0; i < fine.size(); ++i)
            fine[i] = static_cast<unsigned char>(portrait.depth[i] * 255.0f);
        constexpr int kCoarse = kDepthSide / 8;
        Bytes coarse(kCoarse * kCoarse);
        zellab::scalePlane({fine.data(), params.width, params.height}, {coarse.data(), kCoarse, kCoarse},
                           zellab::YuvFilter::box);
        zellab::scalePlane({coarse.data(), kCoarse, kCoarse}, {depth.data(), kDepthSide, kDepthSide},
                           zellab::YuvFilter::bilinear);
        for (std::size_t i = 0; i < depth.size(); ++i) {
            const std::size_t other = i + 8 < depth.size() ? i + 8 : i;
            confidence[i] =
                static_cast<unsigned char>(255 - std::min(250, 4 * std::abs(depth[i] - depth[other])));
        }
    }
};

const Scene& scene() {
    static const Scene one;
    return one;
}

std::vector<float> shares(const Bytes& bytes) {
    std::vector<float> values(bytes.begin(), bytes.end());
    for (float& value : values) value /= 255.0f;
    return values;
}

void BM_solver(benchmark::State& state) {
    const std::vector<float> target = shares(scene().depth), confidence = shares(scene().confidence);
    int vertices = 0;
    for (auto _ : state) {
        const zellab::FastBilateralSolver solver(
            zellab::ConstImageView(scene().guide.data(), kDepthSide, kDepthSide),
            {kSpatial, kLuma, kChroma, kLambda, kIterations, 1e-5f});
        benchmark::DoNotOptimize(solver.Solve(target, confidence));
        vertices = solver.grid().vertices();
    }
    state.counters["vertices"] = vertices;
}

void BM_solverOpencv(benchmark::State& state) {
    cv::setNumThreads(1);
    const cv::Mat rgba(kDepthSide, kDepthSide, CV_8UC4, const_cast<unsigned char*>(scene().guide.data()));
    cv::Mat guide(kDepthSide, kDepthSide, CV_8UC3);  // the peer takes three channels
    cv::mixChannels({rgba}, {guide}, {2, 0, 1, 1, 0, 2});
    std::vector<float> target = shares(scene().depth), confidence = shares(scene().confidence);
    const cv::Mat t(kDepthSide, kDepthSide, CV_32F, target.data()),
        c(kDepthSide, kDepthSide, CV_32F, confidence.data());
    for (auto _ : state) {
        cv::Mat out;
        cv::ximgproc::fastBilateralSolverFilter(guide, t, c, out, kSpatial, kLuma, kChroma, kLambda,
                                                kIterations, 1e-5);
        benchmark::DoNotOptimize(out.data);
    }
}

void BM_refine(benchmark::State& state) {
    Scene own = scene();
    Bytes output(own.depth.size());
    for (auto _ : state) {
        zellab::refine_depth(zellab::ConstImageView(own.guide.data(), kDepthSide, kDepthSide), {},
                             {own.depth.data(), kDepthSide, kDepthSide},
                             {own.confidence.data(), kDepthSide, kDepthSide},
                             {output.data(), kDepthSide, kDepthSide});
        benchmark::ClobberMemory();
    }
}

/// On as many threads as the machine has.
void BM_network(benchmark::State& state) {
    zellab::DepthEngine engine(1, nullptr);
    if (!engine.LoadModel(ZEL_ASSETS "/depth/portrait_depth.onnx")) {
        state.SkipWithError("the assets hold no network");
        return;
    }
    Scene own = scene();
    cv::setNumThreads(-1);
    for (auto _ : state)
        engine.runToPlanes({own.guide.data(), kDepthSide, kDepthSide},
                           {own.depth.data(), kDepthSide, kDepthSide},
                           {own.confidence.data(), kDepthSide, kDepthSide});
}

BENCHMARK(BM_solver)->Name("depth_solver/own")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_solverOpencv)->Name("depth_solver/opencv")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_refine)->Name("depth_refine/whole")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_network)->Name("depth_network/forward")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
