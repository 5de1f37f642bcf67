#include "zellab/imageproc/poisson/roughness.h"
#include "zellab/imageproc/core/ownedImage.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

namespace zellab {

namespace {

constexpr int kBefore = 2, kBehind = 4;  // the window is [v - 2, v + 4)

/// Sums of all samples above and to the left, one row and column larger than the plane. Sums wrap in 32 bits
/// on huge planes; the differences that are read from them do not.
Plane<std::uint32_t> integralOf(PlaneView<const Byte> plane) {
    Plane<std::uint32_t> integral(plane.width + 1, plane.height + 1);
    for (int y = 0; y < plane.height; ++y) {
        const std::uint32_t* above = integral.view().row(y);
        std::uint32_t* row = integral.view().row(y + 1);
        std::uint32_t sum = 0;
        for (int x = 0; x < plane.width; ++x) {
            sum += plane.row(y)[x];
            row[x + 1] = above[x + 1] + sum;
        }
    }
    return integral;
}

}  // namespace

Plane<Byte> greenPlane(ConstImageView picture) {
    Plane<Byte> plane(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        const Byte* from = picture.row(y) + 1;
        Byte* to = plane.view().row(y);
        for (int x = 0; x < picture.width; ++x) to[x] = from[4 * x];
    }
    return plane;
}

void makeRoughness(PlaneView<Byte> plane) {
    const Plane<std::uint32_t> integral = integralOf(plane);
    for (int y = 0; y < plane.height; ++y) {
        const int top = std::max(y - kBefore, 0), bottom = std::min(y + kBehind, plane.height);
        const std::uint32_t *upper = integral.view().row(top), *lower = integral.view().row(bottom);
        Byte* row = plane.row(y);
        for (int x = 0; x < plane.width; ++x) {
            const int left = std::max(x - kBefore, 0), right = std::min(x + kBehind, plane.width);
            const std::uint32_t sum = lower[right] - lower[left] - upper[right] + upper[left];
            const int mean = static_cast<int>(sum) / ((right - left) * (bottom - top));
            row[x] = static_cast<Byte>(std::abs(row[x] - mean));
        }
    }
}

long sumOverBlock(PlaneView<const Byte> plane, const BlockGrid& grid, GridBlock block) {
    const int size = grid.blockSize;
    const PlaneView<const Byte> window = plane.crop(block.x * size, block.y * size, size, size);
    long sum = 0;
    for (int y = 0; y < size; ++y) sum = std::accumulate(window.row(y), window.row(y) + size, sum);
    return sum;
}

}  // namespace zellab
