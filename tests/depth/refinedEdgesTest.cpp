// Where the truth is known: the edges of drawn people in the refined map and in the coarse one.
#include <gtest/gtest.h>

#include <cmath>

#include "depth/refineDepth.h"
#include "inference/smoothness.h"
#include "portrait/portrait.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace {

using Bytes = std::vector<unsigned char>;
using zellab::kDepthSide;

constexpr std::size_t kSamples = std::size_t{kDepthSide} * kDepthSide;

Bytes planeOf(const Bytes& from, int fromSide, int side, zellab::YuvFilter filter) {
    Bytes to(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    EXPECT_TRUE(zellab::scalePlane({from.data(), fromSide, fromSide}, {to.data(), side, side}, filter));
    return to;
}

/// Mean error in the samples within 8 of both person and ground.
double edgeError(const Bytes& map, const Bytes& truth, const Bytes& person) {
    constexpr int kReach = 8;
    double sum = 0;
    int count = 0;
    for (int y = kReach; y < kDepthSide - kReach; ++y)
        for (int x = kReach; x < kDepthSide - kReach; ++x) {
            bool in = false, out = false;
            for (int j = -kReach; j <= kReach; j += 2)
                for (int i = -kReach; i <= kReach; i += 2) {
                    const int value = person[static_cast<std::size_t>((y + j) * kDepthSide + x + i)];
                    in = in || value > 200;
                    out = out || value < 55;
                }
            const auto at = static_cast<std::size_t>(y * kDepthSide + x);
            if (in && out) sum += std::abs(map[at] - truth[at]), ++count;
        }
    return sum / count;
}

// The coarse map is the true one at an eighth of the size: right on the whole and blurred at the edges, as
// networks see depth.
TEST(RefinedEdges, ErrorIsHalvedOverDrawnPortraits) {
    constexpr int kPictureSide = 2 * kDepthSide, kCoarseSide = kDepthSide / 8;
    double coarseSum = 0, refinedSum = 0;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        zel::PortraitParams params;
        params.width = params.height = kPictureSide;
        params.seed = seed;
        const zel::Portrait portrait = zel::drawPortrait(params);
        Bytes image(4 * kSamples), full(portrait.depth.size()), refined(kSamples), sure(kSamples);
        zellab::scaleArgb({portrait.image.rgba.data(), kPictureSide, kPictureSide},
                          {image.data(), kDepthSide, kDepthSide}, zellab::YuvFilter::box);
        for (std::size_t i = 0; i < full.size(); ++i)
            full[i] = static_cast<unsigned char>(portrait.depth[i] * 255);
        const Bytes truth = planeOf(full, kPictureSide, kDepthSide, zellab::YuvFilter::box);
        const Bytes person =
            planeOf(portrait.person.samples, kPictureSide, kDepthSide, zellab::YuvFilter::box);
        Bytes coarse = planeOf(planeOf(full, kPictureSide, kCoarseSide, zellab::YuvFilter::box), kCoarseSide,
                               kDepthSide, zellab::YuvFilter::bilinear);
        const auto trust = zellab::platform::confidenceFromSmoothness({coarse.begin(), coarse.end()},
                                                                      kDepthSide, kDepthSide);
        for (std::size_t i = 0; i < kSamples; ++i) sure[i] = static_cast<unsigned char>(trust[i] * 255);
        zellab::refine_depth(zellab::ConstImageView(image.data(), kDepthSide, kDepthSide), {},
                             {coarse.data(), kDepthSide, kDepthSide}, {sure.data(), kDepthSide, kDepthSide},
                             {refined.data(), kDepthSide, kDepthSide});
        coarseSum += edgeError(coarse, truth, person);
        refinedSum += edgeError(refined, truth, person);
    }
    RecordProperty("ratio", std::to_string(refinedSum / coarseSum));
    EXPECT_LE(refinedSum, 0.5 * coarseSum);
}

}  // namespace
