#include "beautykernel/facefleckcleaner/donorDirection.h"
#include "zellab/imageproc/core/ownedImage.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

namespace zellab {

namespace {

constexpr DonorDirection kDirections[] = {{0, -1},  {-1, 0}, {1, 0},  {0, 1},
                                          {-1, -1}, {-1, 1}, {1, -1}, {1, 1}};
constexpr int kMeanRadius = 3;                       // pixels of the local mean
constexpr int kMarginBefore = 3, kMarginBehind = 4;  // pixels around the blocks; the end is exclusive
constexpr std::size_t kChoiceFrom = 4;               // blocks that have to fit for a choice by texture

/// The red of a crop, and its distance from the local mean where blocks may be read.
class TexturePlane {
public:
    explicit TexturePlane(ConstImageView crop)
        : m_texture(crop.width, crop.height),
          m_isTreated(crop.width, crop.height),
          m_integral(crop.width + 1, crop.height + 1) {
        for (int y = 0; y < crop.height; ++y) {
            const Byte* p = crop.row(y);
            Byte* red = m_texture.view().row(y);
            const std::int64_t* above = m_integral.view().row(y);
            std::int64_t* row = m_integral.view().row(y + 1);
            std::int64_t sum = 0;
            for (int x = 0; x < crop.width; ++x) {
                red[x] = p[4 * x];
                sum += red[x];
                row[x + 1] = above[x + 1] + sum;
            }
        }
    }

    /// Treats the fleck's box and the eight blocks around it.
    void treatAround(const FleckRect& box) {
        const int w = m_texture.width(), h = m_texture.height();
        const int left = std::max(box.left - box.width() - kMarginBefore, 0);
        const int right = std::min(box.right + box.width() + kMarginBehind, w);
        const int top = std::max(box.top - box.height() - kMarginBefore, 0);
        const int bottom = std::min(box.bottom + box.height() + kMarginBehind, h);
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) {
                Byte& treated = m_isTreated.view().row(y)[x];
                Byte& value = m_texture.view().row(y)[x];
                if (!treated) value = static_cast<Byte>(std::abs(value - meanAround(x, y)));
                treated = 1;
            }
    }

    std::int64_t sumOver(int left, int top, int width, int height) const {
        std::int64_t sum = 0;
        for (int y = top; y < top + height; ++y) {
            const Byte* row = m_texture.view().row(y) + left;
            sum = std::accumulate(row, row + width, sum);
        }
        return sum;
    }

private:
    int meanAround(int x, int y) const {
        const int left = std::max(x - kMeanRadius, 0), top = std::max(y - kMeanRadius, 0);
        const int right = std::min(x + kMeanRadius + 1, m_texture.width());
        const int bottom = std::min(y + kMeanRadius + 1, m_texture.height());
        const std::int64_t *upper = m_integral.view().row(top), *lower = m_integral.view().row(bottom);
        const std::int64_t sum = lower[right] - lower[left] - upper[right] + upper[left];
        return static_cast<int>(sum / ((right - left) * (bottom - top)));
    }

    Plane<Byte> m_texture, m_isTreated;
    Plane<std::int64_t> m_integral;
};

DonorDirection choose(const TexturePlane& texture, const FleckRect& box, int width, int height) {
    const int w = box.width(), h = box.height();
    std::vector<DonorDirection> fitting;
    for (const DonorDirection d : kDirections)
        if (box.left + d.x * w >= 0 && box.right + d.x * w < width && box.top + d.y * h >= 0 &&
            box.bottom + d.y * h < height)
            fitting.push_back(d);
    if (fitting.empty()) return {};
    if (fitting.size() < kChoiceFrom) return fitting.front();
    DonorDirection best;
    std::int64_t least = INT64_MAX;
    for (const DonorDirection d : fitting) {
        const std::int64_t sum = texture.sumOver(box.left + d.x * w, box.top + d.y * h, w, h);
        if (sum >= least) continue;
        least = sum;
        best = d;
    }
    return best;
}

}  // namespace

std::vector<DonorDirection> ChooseDonorDirections(ConstImageView crop, const std::vector<FleckRect>& flecks) {
    TexturePlane texture(crop);
    for (const FleckRect& box : flecks) texture.treatAround(box);
    std::vector<DonorDirection> directions;
    directions.reserve(flecks.size());
    for (const FleckRect& box : flecks) directions.push_back(choose(texture, box, crop.width, crop.height));
    return directions;
}

}  // namespace zellab
