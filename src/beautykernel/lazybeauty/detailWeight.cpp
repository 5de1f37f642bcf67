#include "beautykernel/lazybeauty/detailWeight.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "beautykernel/lazybeauty/detailCurve.h"
#include "zellab/imageproc/blur/recursiveGaussian.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

constexpr int kLargeSide = 800;  // shorter side from which the wider radii serve

/// Curves that open with a few values and stay at 255.
constexpr Byte kRangeCurve[] = {0, 31, 63, 93, 123, 151, 177, 200, 222, 240};
constexpr Byte kBandCurve[] = {0, 26, 52, 78, 103, 127, 151, 172, 193, 211, 228, 242};

template <std::size_t N>
Byte opened(const Byte (&curve)[N], int value) {
    return value < static_cast<int>(N) ? curve[value] : Byte{255};
}

Plane<Byte> blurredCopy(PlaneView<const Byte> plane, int radius) {
    Plane<Byte> copy = copyOf(plane);
    StackBlurGray(copy.view(), radius);
    return copy;
}

void gaussian(Plane<Byte>& plane, float sigma) {
    RecursiveGaussianBlur(plane.view(), sigma, sigma);
}

/// Maximum less minimum of each pixel and its neighbours to the left, above and above left: the window lies
/// off centre, and stays so.
Plane<Byte> localRange(PlaneView<const Byte> grey) {
    Plane<Byte> range(grey.width, grey.height);
    for (int y = 0; y < grey.height; ++y) {
        const Byte *here = grey.row(y), *up = grey.row(std::max(y - 1, 0));
        Byte* row = range.view().row(y);
        for (int x = 0; x < grey.width; ++x) {
            const int left = std::max(x - 1, 0);
            const auto [low, high] = std::minmax({here[left], here[x], up[left], up[x]});
            row[x] = static_cast<Byte>(high - low);
        }
    }
    return range;
}

/// Off the box of the face the weight is less than half.
void weakenOffFace(PlaneView<Byte> weight, const FaceData& face) {
    constexpr Byte kOffFace = 116;
    for (int y = 0; y < weight.height; ++y)
        for (int x = 0; x < weight.width; ++x) {
            const bool inside = y >= face.top && y < face.bottom && x >= face.left && x < face.right;
            if (!inside && weight.row(y)[x] == 255) weight.row(y)[x] = kOffFace;
        }
}

}  // namespace

Plane<Byte> detailWeight(PlaneView<const Byte> grey, PlaneView<const Byte> skinMask, const FaceData* face,
                         int bias) {
    const int width = grey.width, height = grey.height, side = std::min(width, height);
    Plane<Byte> detail = localRange(grey);
    StackBlurGray(detail.view(), std::min(side / 80, 12));
    const Plane<Byte> coarse = blurredCopy(grey, 12), fine = blurredCopy(grey, 5);
    for (std::size_t i = 0; i < detail.size(); ++i) {
        const int range = opened(kRangeCurve, detail.data()[i]);
        const int band = opened(kBandCurve, std::max(coarse.data()[i] - fine.data()[i], 0));
        detail.data()[i] = static_cast<Byte>((band >= 128 ? range + 180 : range) >> 1);
    }
    StackBlurGray(detail.view(), side < kLargeSide ? 6 : 10);
    for (std::size_t i = 0; i < detail.size(); ++i) {
        int value = kDetailCurve[detail.data()[i]];
        if (value < 200) value = (value - skinMask.data[i] + 255) >> 1;
        detail.data()[i] = std::min(value + bias, 255) < 128 ? 255 : 0;
    }
    if (face) weakenOffFace(detail.view(), *face);
    gaussian(detail, side < kLargeSide ? 2.8f : 4.0f);
    return detail;
}

Plane<Byte> equalisedEdges(PlaneView<const Byte> grey) {
    constexpr int kStrong = 900;  // squared response
    std::array<std::int64_t, 256> histogram{};
    Plane<Byte> equalised = copyOf(grey);
    for (std::size_t i = 0; i < equalised.size(); ++i) ++histogram[equalised.data()[i]];
    std::array<Byte, 256> table{};
    std::int64_t sum = 0;
    for (std::size_t v = 0; v < 256; ++v) {
        sum += histogram[v];
        table[v] =
            static_cast<Byte>(static_cast<float>(sum) * 255.0f / static_cast<float>(equalised.size()) + 0.5f);
    }
    for (std::size_t i = 0; i < equalised.size(); ++i) equalised.data()[i] = table[equalised.data()[i]];

    Plane<Byte> edges(grey.width, grey.height);
    for (int y = 1; y < grey.height - 1; ++y) {
        const auto view = equalised.view();
        const Byte *up = view.row(y - 1), *here = view.row(y), *down = view.row(y + 1);
        for (int x = 1; x < grey.width - 1; ++x) {
            const int gx =
                up[x + 1] + 2 * here[x + 1] + down[x + 1] - up[x - 1] - 2 * here[x - 1] - down[x - 1];
            const int gy = down[x - 1] + 2 * down[x] + down[x + 1] - up[x - 1] - 2 * up[x] - up[x + 1];
            edges.view().row(y)[x] = gx * gx + gy * gy >= kStrong ? 255 : 0;
        }
    }
    return edges;
}

}  // namespace zellab
