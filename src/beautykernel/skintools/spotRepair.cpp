#include "beautykernel/skintools/spotRepair.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include "beautykernel/skintools/spotPatch.h"
#include "beautykernel/skintools/spotTables.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

constexpr int kSkinAbove = 100;     // mask values that may hold a spot
constexpr int kFlatBelow = 13;      // edge strengths that do not count
constexpr float kEdgeShare = 0.8f;  // of the edges that count, those that may hold a spot
constexpr int kLeastEdge = 20, kMostEdge = 50;
constexpr int kEdgeBlurRadius = 4, kEdgeBlurLimit = 20;
constexpr int kBrightCentre = 220;                      // mean grey from which no spot is seen
constexpr float kSmallFace = 0.08f, kTinyFace = 0.02f;  // shares of the picture

bool boxLiesInside(const SpotBox& box, int width, int height) {
    return box.left >= 0 && box.top >= 0 && box.width >= 1 && box.height >= 1 &&
           box.width <= width - box.left && box.height <= height - box.top;
}

/// Inclusive running sums: entry (x, y) holds the sum of all samples up to column x and row y.
class RunningSums {
public:
    template <typename Value>
    RunningSums(PlaneView<const Byte> plane, const Value& value) : m_sums(plane.width + 1, plane.height + 1) {
        for (int y = 0; y < plane.height; ++y) {
            std::uint32_t rowSum = 0;
            const std::uint32_t* above = m_sums.view().row(y) + 1;
            std::uint32_t* row = m_sums.view().row(y + 1) + 1;
            for (int x = 0; x < plane.width; ++x) row[x] = above[x] + (rowSum += value(plane.row(y)[x]));
        }
    }

    /// Sum over columns [x0, x1) and rows [y0, y1), which must lie inside.
    std::uint32_t sum(int x0, int y0, int x1, int y1) const {
        const std::uint32_t *upper = m_sums.view().row(y0), *lower = m_sums.view().row(y1);
        return lower[x1] - lower[x0] - upper[x1] + upper[x0];
    }

    /// Sum over the window of half-width `half` around (x, y), clipped to the plane.
    int clippedSum(int x, int y, int half) const {
        return static_cast<int>(sum(std::max(x - half, 0), std::max(y - half, 0),
                                    std::min(x + half + 1, m_sums.width() - 1),
                                    std::min(y + half + 1, m_sums.height() - 1)));
    }

private:
    Plane<std::uint32_t> m_sums;
};

Plane<Byte> tonedGrey(ConstImageView image, const SpotBox* box) {
    Plane<Byte> grey(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        const Byte* p = image.row(y);
        Byte* row = grey.view().row(y);
        for (int x = 0; x < image.width; ++x, p += 4) {
            const bool outside = box && (x < box->left || y < box->top || x >= box->left + box->width ||
                                         y >= box->top + box->height);
            const int value = outside ? 0 : (59 * p[1] + 30 * p[0] + 11 * p[2] + 50) / 100;
            row[x] = kSpotToneCurve[static_cast<std::size_t>(value)];
        }
    }
    return grey;
}

/// Half the sum of both absolute Sobel responses, capped at 255; the outermost ring stays 0.
Plane<Byte> edgeStrength(PlaneView<const Byte> grey) {
    Plane<Byte> edges(grey.width, grey.height);
    for (int y = 1; y < grey.height - 1; ++y) {
        const Byte *up = grey.row(y - 1), *here = grey.row(y), *down = grey.row(y + 1);
        for (int x = 1; x < grey.width - 1; ++x) {
            const int gx =
                up[x + 1] + 2 * here[x + 1] + down[x + 1] - up[x - 1] - 2 * here[x - 1] - down[x - 1];
            const int gy = down[x - 1] + 2 * down[x] + down[x + 1] - up[x - 1] - 2 * up[x] - up[x + 1];
            edges.view().row(y)[x] = static_cast<Byte>(std::min((std::abs(gx) + std::abs(gy)) / 2, 255));
        }
    }
    return edges;
}

/// The edge strength from which a cell holds no spot, from the strengths inside the face box or the interior.
int edgeThreshold(PlaneView<const Byte> edges, const SpotBox* box) {
    std::array<int, 256> histogram{};
    const SpotBox area = box ? *box : SpotBox{1, 1, edges.width - 2, edges.height - 2};
    for (int y = area.top; y < area.top + area.height; ++y)
        for (int x = area.left; x < area.left + area.width; ++x) ++histogram[edges.row(y)[x]];
    int total = 0;
    for (std::size_t e = kFlatBelow; e < 256; ++e) total += histogram[e];
    const int wanted = static_cast<int>(static_cast<float>(total) * kEdgeShare + 0.5f);
    int threshold = 0, sum = 0;
    for (int e = kFlatBelow; e < 256; ++e) {
        sum += histogram[static_cast<std::size_t>(e)];
        if (sum >= wanted) {
            threshold = e;
            break;
        }
    }
    return std::clamp(threshold, kLeastEdge, kMostEdge);
}

/// Erases blobs that stop growing as the window around them does. The counts are those from before the
/// erasing.
void eraseSpecks(PlaneView<Byte> edges) {
    const RunningSums counts(edges, [](Byte e) { return e & 1u; });
    const int largestHalf = std::min(edges.width, edges.height) >= 400 ? 6 : 5;
    for (int y = 0; y < edges.height; ++y)
        for (int x = 0; x < edges.width; ++x) {
            if (edges.row(y)[x] == 0) continue;
            int previous = counts.clippedSum(x, y, 1);
            for (int half = 2; half <= largestHalf; ++half) {
                const int count = counts.clippedSum(x, y, half);
                if (count - previous < 2) {
                    const int left = std::max(x - half, 0), right = std::min(x + half, edges.width - 1);
                    for (int row = std::max(y - half, 0); row <= std::min(y + half, edges.height - 1); ++row)
                        std::fill(edges.row(row) + left, edges.row(row) + right + 1, Byte{0});
                    break;
                }
                previous = count;
            }
        }
}

/// 255 where no spot may be repaired: strong edges and what is no skin, widened.
Plane<Byte> forbiddenCells(PlaneView<const Byte> grey, PlaneView<const Byte> skinMask, const SpotBox* box) {
    Plane<Byte> edges = edgeStrength(grey);
    const int threshold = edgeThreshold(edges.view(), box);
    for (int y = 0; y < grey.height; ++y) {
        Byte* row = edges.row(y);
        const Byte* skin = skinMask.row(y);
        for (int x = 0; x < grey.width; ++x) row[x] = row[x] >= threshold || skin[x] <= kSkinAbove ? 255 : 0;
    }
    eraseSpecks(edges.view());
    StackBlurGray(edges.view(), kEdgeBlurRadius);
    for (std::size_t i = 0; i < edges.size(); ++i)
        edges.data()[i] = edges.data()[i] < kEdgeBlurLimit ? 0 : 255;
    return edges;
}

/// Looks for spots of one radius: cells whose square is darker than twelve squares around it by given
/// amounts.
class SpotScan {
public:
    SpotScan(const RunningSums& grey, int radius) : m_grey(grey), m_radius(radius) {
        const int side = 2 * radius + 1, r = radius, far = radius + 1;
        const int corner = side * side - far * r, middle = (side - r) * side;
        m_brightest = side * side * kBrightCentre;
        m_neighbours = {{{-r, -far, corner},
                         {0, -far, middle},
                         {r, -far, corner},
                         {-far, 0, middle},
                         {far, 0, middle},
                         {-r, far, corner},
                         {0, far, middle},
                         {r, far, corner},
                         {-far, -r, corner},
                         {far, -r, corner},
                         {-far, r, corner},
                         {far, r, corner}}};
    }

    bool isSpot(int x, int y) const {
        const int centre = box(x, y);
        return centre < m_brightest &&
               std::all_of(m_neighbours.begin(), m_neighbours.end(),
                           [&](const Neighbour& n) { return box(x + n.dx, y + n.dy) - centre >= n.amount; });
    }

private:
    struct Neighbour {
        int dx, dy, amount;
    };
    int box(int x, int y) const {
        return static_cast<int>(m_grey.sum(x - m_radius, y - m_radius, x + m_radius + 1, y + m_radius + 1));
    }

    const RunningSums& m_grey;
    int m_radius, m_brightest;
    std::array<Neighbour, 12> m_neighbours;
};

void repairSpots(ImageView image, const RunningSums& grey, PlaneView<const Byte> forbidden, int radius,
                 PlaneView<Byte> spotMask) {
    const SpotScan scan(grey, radius);
    const int first = 3 * radius + 2, margin = 3 * radius + 1;
    for (int y = first; y < image.height - margin; ++y)
        for (int x = first; x < image.width - margin; ++x) {
            if (forbidden.row(y)[x] == 255 || !scan.isSpot(x, y)) continue;
            for (int row = y - radius; spotMask.data && row <= y + radius; ++row)
                std::fill_n(spotMask.row(row) + x - radius, 2 * radius + 1, Byte{255});
            repaintSpot(image, x, y, radius);
        }
}

}  // namespace

bool CSpotRepair::Run(ImageView image, PlaneView<const Byte> skinMask, const SpotSearch& search,
                      PlaneView<Byte> spotMask) {
    if (!image.valid() || !skinMask.valid()) return false;
    const int width = image.width, height = image.height;
    const SpotBox* face = boxLiesInside(search.face, width, height) ? &search.face : nullptr;
    for (int y = 0; spotMask.valid() && y < height; ++y) std::fill_n(spotMask.row(y), width, Byte{0});

    const Plane<Byte> grey = tonedGrey(image, face);
    const Plane<Byte> forbidden = forbiddenCells(grey.view(), skinMask, face);
    const RunningSums sums(grey.view(), [](Byte g) { return g; });

    int largest = search.firstRadius + search.radiusCount - 1;
    if (face) {
        const float share = static_cast<float>(face->width) * static_cast<float>(face->height) /
                            (static_cast<float>(width) * static_cast<float>(height));
        if (share < kTinyFace) return true;
        if (share < kSmallFace) largest = search.firstRadius;
    }
    for (int radius = std::min(largest, kLargestSpotRadius); radius >= std::max(search.firstRadius, 0);
         --radius)
        repairSpots(image, sums, forbidden.view(), radius, spotMask);
    return true;
}

}  // namespace zellab
