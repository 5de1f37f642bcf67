#include "beautykernel/wrinkle_cleaner/neighbourDonor.h"

#include <algorithm>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/edges/edgeDetect.h"
#include "zellab/imageproc/poisson/roughness.h"

namespace zellab {

namespace {

constexpr int kEdgeLow = 8, kEdgeHigh = 20;  // thresholds of the edge detector
constexpr int kServedRoughness = 15;         // what a donor pixel gains in roughness by serving

/// Neighbours in the order in which they are listed.
constexpr GridBlock kNeighbours[] = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}, {-1, -1}, {-1, 1}, {1, -1}, {1, 1}};

struct Candidate {
    GridBlock block;
    long roughness;
};

/// The blocks that may lend to a hole block: all of up to three neighbours, else the smoothest one, two or
/// three.
std::vector<Candidate> candidates(PlaneView<const Byte> roughness, const BlockGrid& grid, GridBlock hole) {
    std::vector<Candidate> list;
    for (const GridBlock step : kNeighbours) {
        const GridBlock block{hole.x + step.x, hole.y + step.y};
        if (grid.contains(block)) list.push_back({block, sumOverBlock(roughness, grid, block)});
    }
    if (list.size() <= 3) return list;
    const bool mostFit = list.size() >= 6;
    std::stable_sort(list.begin(), list.end(),
                     [](const Candidate& a, const Candidate& b) { return a.roughness < b.roughness; });
    const bool firstStandsOut = 2 * list[0].roughness < list[1].roughness;
    const bool thirdIsNear = 3 * list[0].roughness >= list[2].roughness;
    list.resize(firstStandsOut ? 1 : thirdIsNear && mostFit ? 3 : 2);
    return list;
}

void exchange(int blockSize, ConstImageView crop, PlaneView<const Byte> mask, GradientField& field) {
    const BlockGrid grid(crop.width, crop.height, blockSize);
    Plane<Byte> roughness = greenPlane(crop);
    Plane<Byte> edges(crop.width, crop.height);
    EdgeDetectCanny(roughness.view(), edges.view(), kEdgeLow, kEdgeHigh, false);
    makeRoughness(roughness.view());
    for (int y = 0; y < crop.height; ++y)
        for (int x = 0; x < crop.width; ++x) {
            Byte& edge = edges.view().row(y)[x];
            if (edge > 128) roughness.view().row(y)[x] = 255;
            if (mask.row(y)[x] > kHoleAbove) edge = 255;
        }

    const GradientField before = copyOf(field);
    for (const GridBlock hole : holeBlocksFromOutside(mask, grid)) {
        const std::vector<Candidate> list = candidates(roughness.view(), grid, hole);
        const auto donor =
            std::min_element(list.begin(), list.end(), [&](const Candidate& a, const Candidate& b) {
                return sumOverBlock(edges.view(), grid, a.block) < sumOverBlock(edges.view(), grid, b.block);
            });
        if (donor == list.end()) continue;  // a grid of one block has no neighbour to lend
        lendGradients(mask, grid, hole, donor->block, before, field, [&](int x, int y) {
            Byte& rough = roughness.view().row(y)[x];
            rough = static_cast<Byte>(std::min(rough + kServedRoughness, 255));
        });
    }
}

}  // namespace

GradientExchange neighbourDonorExchange(int blockSize) {
    return [blockSize](ConstImageView crop, PlaneView<const Byte> mask, GradientField& field) {
        exchange(blockSize, crop, mask, field);
    };
}

}  // namespace zellab
