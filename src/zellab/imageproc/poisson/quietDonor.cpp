#include "zellab/imageproc/poisson/quietDonor.h"

#include <algorithm>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/edges/edgeDetect.h"
#include "zellab/imageproc/poisson/roughness.h"

namespace zellab {

namespace {

constexpr int kEdgeLow = 5, kEdgeHigh = 10;  // thresholds of the edge detector
constexpr int kReach = 2;                    // blocks on each side in which a donor is sought

/// Roughness of every block of the grid, edges at full value.
std::vector<long> blockRoughness(ConstImageView crop, const BlockGrid& grid) {
    Plane<Byte> plane = greenPlane(crop);
    Plane<Byte> edges(crop.width, crop.height);
    EdgeDetectCanny(plane.view(), edges.view(), kEdgeLow, kEdgeHigh, false);
    makeRoughness(plane.view());
    for (std::size_t i = 0; i < plane.size(); ++i)
        if (edges.data()[i] > 128) plane.data()[i] = 255;
    std::vector<long> roughness(grid.count());
    for (int y = 0; y < grid.rows; ++y)
        for (int x = 0; x < grid.columns; ++x)
            roughness[grid.index({x, y})] = sumOverBlock(plane.view(), grid, {x, y});
    return roughness;
}

void exchange(int blockSize, ConstImageView crop, PlaneView<const Byte> mask, GradientField& field) {
    const BlockGrid grid(crop.width, crop.height, blockSize);
    const std::vector<long> roughness = blockRoughness(crop, grid);
    std::vector<char> isUsed(grid.count());
    const GradientField before = copyOf(field);
    for (const GridBlock hole : holeBlocksFromOutside(mask, grid)) {
        GridBlock best = hole;
        for (int y = hole.y - kReach; y <= hole.y + kReach; ++y)
            for (int x = hole.x - kReach; x <= hole.x + kReach; ++x) {
                const GridBlock b{std::clamp(x, 0, grid.columns - 1), std::clamp(y, 0, grid.rows - 1)};
                if (roughness[grid.index(b)] < roughness[grid.index(best)] && !isUsed[grid.index(b)])
                    best = b;
            }
        isUsed[grid.index(best)] = 1;
        lendGradients(mask, grid, hole, best, before, field);
    }
}

}  // namespace

GradientExchange quietDonorExchange(int blockSize) {
    return [blockSize](ConstImageView crop, PlaneView<const Byte> mask, GradientField& field) {
        exchange(blockSize, crop, mask, field);
    };
}

}  // namespace zellab
