#include "depth/refineDepth.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "depth/depthAreas.h"
#include "depth/depthLog.h"
#include "depth/fastBilateralSolver.h"
#include "depth/medianFilter.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

using Bytes = std::vector<Byte>;

// The spatial cell: a hundredth of the longer side, within limits.
constexpr float kSpatialShare = 100.0f;
constexpr long kSmallestCell = 3, kLargestCell = 16;
constexpr float kSigmaLuma = 6.0f, kSigmaChroma = 6.0f;  // levels
constexpr float kLambda = 128.0f;
constexpr int kIterations = 8;
constexpr float kTolerance = 1e-5f;
constexpr int kMedianWindow = 3;

struct Size {
    int height, width;
};

/// A plane or picture in the output's size; empty where it cannot be had.
Bytes scaled(const Byte* source, int channels, Size from, Size to) {
    if ((channels != 1 && channels != 4) || !source) return {};
    Bytes target(sampleCount(to.width, to.height, channels));
    const bool done = channels == 4 ? scaleArgb({source, from.width, from.height},
                                                {target.data(), to.width, to.height}, YuvFilter::box)
                                    : scalePlane({source, from.width, from.height},
                                                 {target.data(), to.width, to.height}, YuvFilter::box);
    return done ? target : Bytes();
}

/// Byte 0 of each pixel.
Bytes firstChannel(const Byte* source, int channels, Size size) {
    Bytes plane(channels > 0 ? sampleCount(size.width, size.height) : 0);
    for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = source[i * static_cast<std::size_t>(channels)];
    return plane;
}

float cellFor(Size size) {
    const long cell = std::lroundf(static_cast<float>(std::max(size.height, size.width)) / kSpatialShare);
    return static_cast<float>(std::clamp(cell, kSmallestCell, kLargestCell));
}

std::vector<float> toShares(const Bytes& bytes) {
    std::vector<float> shares(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) shares[i] = static_cast<float>(bytes[i]) / 255.0f;
    return shares;
}

/// Solves for the depth and leaves it in `depth`; an unusable guide leaves it as it is.
void solveDepth(const Bytes& guide, int channels, Size size, Bytes& depth, const Bytes& confidence) {
    const FastBilateralSolver solver(
        guide.empty() ? nullptr : guide.data(), channels, size.height, size.width,
        {cellFor(size), kSigmaLuma, kSigmaChroma, kLambda, kIterations, kTolerance});
    const std::vector<float> result = solver.Solve(toShares(depth), toShares(confidence));
    for (std::size_t i = 0; i < result.size(); ++i) depth[i] = truncateToByte(result[i] * 255.0f);
}

}  // namespace

bool refine_depth(Byte* image, int imageChannels, int imageHeight, int imageWidth, Byte* mask,
                  int maskChannels, int maskHeight, int maskWidth, Byte* depth, Byte* confidence,
                  Byte* output, int outHeight, int outWidth) {
    logDepth("refine_depth +");
    const Size size{outHeight, outWidth}, coarse{kDepthSide, kDepthSide};
    const Bytes guide = scaled(image, imageChannels, {imageHeight, imageWidth}, size);
    Bytes fine = scaled(depth, 1, coarse, size);
    const Bytes sure = scaled(confidence, 1, coarse, size);
    logDepth("resize end");
    if (output && !fine.empty() && !sure.empty()) {
        if (mask) {
            const Bytes plane = firstChannel(mask, maskChannels, {maskHeight, maskWidth});
            const Bytes person = scaled(plane.data(), 1, {maskHeight, maskWidth}, size);
            if (!person.empty())
                ModifyDepthByAreas(person.data(), fine.data(), sure.data(), outHeight, outWidth);
            logDepth("modify end");
        }
        solveDepth(guide, imageChannels, size, fine, sure);
        logDepth("fbs end");
        MedianFilterPlane(fine.data(), outWidth, outHeight, kMedianWindow);
        std::copy(fine.begin(), fine.end(), output);
    }
    logDepth("refine_depth -");
    return true;
}

}  // namespace zellab
