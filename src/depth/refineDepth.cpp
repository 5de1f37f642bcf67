#include "depth/refineDepth.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "depth/depthAreas.h"
#include "depth/depthLog.h"
#include "depth/fastBilateralSolver.h"
#include "depth/medianFilter.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

// The spatial cell: a hundredth of the longer side, within limits.
constexpr float kSpatialShare = 100.0f;
constexpr long kSmallestCell = 3, kLargestCell = 16;
constexpr float kSigmaLuma = 6.0f, kSigmaChroma = 6.0f;  // levels
constexpr float kLambda = 128.0f;
constexpr int kIterations = 8;
constexpr float kTolerance = 1e-5f;
constexpr int kMedianWindow = 3;

/// A plane in the size of `target`; false where it cannot be had.
bool scalePlaneTo(PlaneView<const Byte> source, Plane<Byte>& target) {
    return source.data && scalePlane(source, target.view(), YuvFilter::box);
}

/// Byte 0 of each pixel.
Plane<Byte> firstChannel(const PixelsView& pixels) {
    Plane<Byte> plane(pixels.width, pixels.height);
    for (std::size_t i = 0; i < plane.size(); ++i)
        plane.data()[i] = pixels.data[i * static_cast<std::size_t>(pixels.channels)];
    return plane;
}

float cellFor(int width, int height) {
    const long cell = std::lroundf(static_cast<float>(std::max(width, height)) / kSpatialShare);
    return static_cast<float>(std::clamp(cell, kSmallestCell, kLargestCell));
}

std::vector<float> toShares(const Plane<Byte>& bytes) {
    std::vector<float> shares(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) shares[i] = static_cast<float>(bytes.data()[i]) / 255.0f;
    return shares;
}

/// Solves for the depth and leaves it in `depth`; an unusable guide leaves it as it is.
void solveDepth(const PixelsView& guide, Plane<Byte>& depth, const Plane<Byte>& confidence) {
    const FastBilateralSolver solver(guide, {cellFor(depth.width(), depth.height()), kSigmaLuma, kSigmaChroma,
                                             kLambda, kIterations, kTolerance});
    const std::vector<float> result = solver.Solve(toShares(depth), toShares(confidence));
    for (std::size_t i = 0; i < result.size(); ++i) depth.data()[i] = truncateToByte(result[i] * 255.0f);
}

/// Solves with the picture in the depth's size as the guide.
void solveByPicture(const PixelsView& image, Plane<Byte>& depth, const Plane<Byte>& confidence) {
    const int width = depth.width(), height = depth.height();
    if (image.channels == 1) {
        Plane<Byte> guide(width, height);
        const bool guides = scalePlaneTo({image.data, image.width, image.height}, guide);
        solveDepth(guides ? guide.view() : PixelsView(), depth, confidence);
    } else {
        RgbaImage guide(width, height);
        const bool guides =
            image.data && scaleArgb({image.data, image.width, image.height}, guide.view(), YuvFilter::box);
        solveDepth(guides ? guide.view() : PixelsView(), depth, confidence);
    }
}

}  // namespace

bool refine_depth(const PixelsView& image, const PixelsView& mask, PlaneView<const Byte> depth,
                  PlaneView<const Byte> confidence, PlaneView<Byte> output) {
    logDepth("refine_depth +");
    Plane<Byte> fine(output.width, output.height), sure(output.width, output.height);
    const bool scaled = scalePlaneTo(depth, fine) && scalePlaneTo(confidence, sure);
    logDepth("resize end");
    if (output.data && scaled) {
        if (mask.data) {
            Plane<Byte> person(output.width, output.height);
            if (scalePlaneTo(firstChannel(mask).view(), person))
                ModifyDepthByAreas(person.view(), fine.view(), sure.view());
            logDepth("modify end");
        }
        solveByPicture(image, fine, sure);
        logDepth("fbs end");
        MedianFilterPlane(fine.view(), kMedianWindow);
        copyPixels(std::as_const(fine).view(), output);
    }
    logDepth("refine_depth -");
    return true;
}

}  // namespace zellab
