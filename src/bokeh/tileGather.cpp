#include "bokeh/tileGather.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

/// Rounds half away from zero and limits to 0..255; NaN becomes 0.
Byte roundToByte(float value) {
    if (!(value > 0.0f)) return 0;
    if (value >= 255.0f) return 255;
    const int whole = static_cast<int>(value);
    return static_cast<Byte>(whole + (value - static_cast<float>(whole) >= 0.5f));
}

}  // namespace

void finishPixel(const GatherSums& sums, const LookValues& look, const Byte* source, Byte* pixel) {
    pixel[3] = 255;
    if (sums.weight == 0) {
        std::copy_n(source, 3, pixel);
        return;
    }
    const auto total = static_cast<float>(sums.weight);
    float colour[3] = {static_cast<float>(sums.red) / total, static_cast<float>(sums.green) / total,
                       static_cast<float>(sums.blue) / total};
    if (look.vivid > 0.0f) {
        const float f = look.saturation();
        const float grey = (0.2125f * colour[0] + 0.7154f * colour[1] + 0.0721f * colour[2]) * f;
        for (float& c : colour) c = (1.0f - f) * c + grey;
    }
    for (int c = 0; c < 3; ++c) pixel[c] = roundToByte(colour[c]);
}

namespace {

/// Fills a row of pairs; true if one of them has high bits.
bool preparePairRow(const GatherSource& source, NeighbourPairs& pairs, int y) {
    NeighbourPair* const row = pairs.pairs.data() + pairs.across * y;
    Byte* const radii = pairs.radii.data() + 2 * pairs.across * y;
    std::uint32_t highBits = 0;
    for (int x = 0; x < source.image.width; ++x) {
        const Byte* const pixel = source.image.at(x, y);
        const std::uint32_t weight = source.weight.row(y)[x];
        const std::uint32_t products[4] = {pixel[0] * weight, pixel[1] * weight, pixel[2] * weight, weight};
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t high = products[c] >> NeighbourPair::kLowBits;
            row[x / 2].low[2 * c + x % 2] =
                static_cast<std::int16_t>(products[c] - (high << NeighbourPair::kLowBits));
            row[x / 2].high[2 * c + x % 2] = static_cast<std::int16_t>(high);
            highBits |= high;
        }
        radii[x] = static_cast<Byte>(countedRadius(source.radius.row(y)[x]));
    }
    return highBits != 0;
}

void gatherRow(const GatherSource& s, const Tile& tile, int y, Byte* target) {
    for (int x = tile.x; x < tile.x + tile.width; ++x, target += 4) {
        const int reach = std::min(countedRadius(s.radius.row(y)[x]), s.maximumRadius);
        GatherSums sums;
        const int top = std::max(y - reach, 0), bottom = std::min(y + reach, s.image.height - 1);
        const int left = std::max(x - reach, 0), right = std::min(x + reach, s.image.width - 1);
        for (int ny = top; ny <= bottom; ++ny) {
            const Byte* const radii = s.radius.row(ny);
            const Byte* pixel = s.image.at(left, ny);
            for (int nx = left; nx <= right; ++nx, pixel += 4) {
                const int radius = countedRadius(radii[nx]);
                if (std::max(std::abs(nx - x), std::abs(ny - y)) > radius) continue;
                const int record = s.spin.data ? s.spin.row(ny)[nx] : 0;
                const std::uint64_t weight =
                    std::uint64_t{s.kernels->rowTowards(record, radius, ny - y)[x - nx]} *
                    s.weight.row(ny)[nx];
                sums.red += pixel[0] * weight;
                sums.green += pixel[1] * weight;
                sums.blue += pixel[2] * weight;
                sums.weight += weight;
            }
        }
        finishPixel(sums, s.look, s.image.at(x, y), target);
    }
}

}  // namespace

TileGather::TileGather(const GatherSource& source, platform::SimdLevel level, int workers)
    : m_source(source), m_workers(workers) {
    if (level == platform::SimdLevel::avx2) preparePairs();
}

void TileGather::preparePairs() {
    const int height = m_source.image.height;
    m_pairs.across = (std::ptrdiff_t{m_source.image.width} + 1) / 2;
    const std::size_t count = static_cast<std::size_t>(m_pairs.across) * static_cast<std::size_t>(height);
    m_pairs.pairs.resize(count);
    m_pairs.radii.resize(2 * count);
    std::atomic<bool> wide{false};
    parallelRows(height, m_workers, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            if (preparePairRow(m_source, m_pairs, y)) wide.store(true, std::memory_order_relaxed);
    });
    m_pairs.wide = wide.load();
}

void TileGather::gather(const Tile& tile, const ImageView& target) const {
    // Row by row: radii differ so much that bands would leave workers waiting.
    runTasks(tile.height, m_workers, [&](int row) {
        if (m_pairs.across > 0)
            gatherRowAvx2(m_source, m_pairs, tile, tile.y + row, target.row(row));
        else
            gatherRow(m_source, tile, tile.y + row, target.row(row));
    });
}

}  // namespace zellab::Bokeh
