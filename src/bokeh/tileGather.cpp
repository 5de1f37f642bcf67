#include "bokeh/tileGather.h"

#include <algorithm>
#include <array>
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

/// Fills a row of pairs; returns the largest size of a low value, and sets `high` where one has high bits.
int preparePairRow(const GatherSource& source, NeighbourPairs& pairs, int y) {
    const std::ptrdiff_t first = pairs.across * y;
    const int width = source.image.width;
    int largest = 0;
    for (int x = 0; x < width; ++x) {
        const std::ptrdiff_t pair = first + x / 2;
        const Byte* const pixel = source.image.at(x, y);
        const int weight = source.weight.row(y)[x];
        const bool wide = weight > NeighbourPair::kLargestWeight;
        for (int c = 0; c < 4; ++c) {
            const int value = c < 3 ? (pixel[c] - NeighbourPair::kMiddle) * weight : weight;
            const int high = wide ? value >> NeighbourPair::kLowBits : 0;
            const int low = value - high * (1 << NeighbourPair::kLowBits);
            pairs.low[static_cast<std::size_t>(pair)].values[2 * c + x % 2] = static_cast<std::int16_t>(low);
            if (!pairs.high.empty())
                pairs.high[static_cast<std::size_t>(pair)].values[2 * c + x % 2] =
                    static_cast<std::int16_t>(high);
            largest = std::max(largest, std::abs(low));
        }
        Byte& kind = pairs.kind[static_cast<std::size_t>(pair)];
        const auto radius = static_cast<Byte>(countedRadius(source.radius.row(y)[x]));
        if (x % 2 == 0)
            kind = static_cast<Byte>(radius | (source.spin.data ? NeighbourPairs::kMixed : 0));
        else if ((kind & ~NeighbourPairs::kWide & ~NeighbourPairs::kMixed) != radius)
            kind |= NeighbourPairs::kMixed;
        if (wide) kind |= NeighbourPairs::kWide;
    }
    std::uint16_t* const ends = pairs.runEnd.data() + first;
    const Byte* const kinds = pairs.kind.data() + first;
    for (std::ptrdiff_t i = pairs.across; i-- > 0;)
        ends[i] = i + 1 < pairs.across && kinds[i + 1] == kinds[i] ? ends[i + 1]
                                                                   : static_cast<std::uint16_t>(i + 1);
    return largest;
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

KernelPairs::KernelPairs(const KernelSet& kernels, const Byte* radii, std::size_t count) {
    constexpr std::size_t kEntries = 2 * kReach + 1, kRows = std::size_t{2 * kMaxRadius + 1} * kRadii;
    std::array<bool, kRadii> wanted{};
    for (std::size_t i = 0; i < count; ++i) wanted[static_cast<std::size_t>(countedRadius(radii[i]))] = true;
    m_weights.resize(2 * kEntries);  // the row of zeros that every unplaced row stands for
    m_rows.resize(kRows);
    m_support.assign(kRows, -1);
    m_widest.assign(kRows, -1);
    for (int dy = -kMaxRadius; dy <= kMaxRadius; ++dy)
        for (int radius = 0; radius <= kMaxRadius; ++radius) {
            signed char& support = m_support[index(radius, dy)];
            if (wanted[static_cast<std::size_t>(radius)] && std::abs(dy) <= radius) {
                const Byte* const middle = kernels.rowTowards(0, radius, dy);
                m_rows[index(radius, dy)] = static_cast<std::uint32_t>(m_weights.size());
                for (int i = -kReach; i <= kReach; ++i) {
                    m_weights.push_back(middle[i]);
                    m_weights.push_back(i > -kReach ? middle[i - 1] : Byte{0});
                    if (middle[i] != 0) support = std::max(support, static_cast<signed char>(std::abs(i)));
                }
            }
            m_widest[index(radius, dy)] =
                radius > 0 ? std::max(support, m_widest[index(radius - 1, dy)]) : support;
        }
}

TileGather::TileGather(const GatherSource& source, platform::SimdLevel level, int workers)
    : m_source(source), m_workers(workers) {
    if (level == platform::SimdLevel::avx2) preparePairs();
}

void TileGather::preparePairs() {
    const int width = m_source.image.width, height = m_source.image.height;
    m_pairs.across = (std::ptrdiff_t{width} + 1) / 2;
    const std::size_t count = static_cast<std::size_t>(m_pairs.across) * static_cast<std::size_t>(height);
    m_pairs.low.resize(count);
    m_pairs.kind.resize(count);
    m_pairs.runEnd.resize(count);
    std::atomic<bool> wide{false};
    parallelRows(height, m_workers, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            if (std::any_of(m_source.weight.row(y), m_source.weight.row(y) + width,
                            [](std::uint16_t weight) { return weight > NeighbourPair::kLargestWeight; }))
                wide.store(true, std::memory_order_relaxed);
    });
    if (wide.load()) m_pairs.high.resize(count);
    std::atomic<int> largest{0};
    parallelRows(height, m_workers, [&](int begin, int end) {
        int own = 0;
        for (int y = begin; y < end; ++y) own = std::max(own, preparePairRow(m_source, m_pairs, y));
        for (int seen = largest.load(); seen < own && !largest.compare_exchange_weak(seen, own);) continue;
    });
    m_pairs.largestLow = largest.load();
    findLargestRadii();
    if (!m_source.spin.data) {
        std::array<bool, 256> present{};
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) present[m_source.radius.row(y)[x]] = true;
        std::vector<Byte> radii;
        for (int radius = 0; radius < 256; ++radius)
            if (present[static_cast<std::size_t>(radius)]) radii.push_back(static_cast<Byte>(radius));
        m_kernels = KernelPairs(*m_source.kernels, radii.data(), radii.size());
    }
}

/// Of each block, then of those around it.
void TileGather::findLargestRadii() {
    constexpr int kBlock = NeighbourPairs::kBlock, kAround = (kMaxRadius + kBlock - 1) / kBlock;
    const PlaneView<const Byte>& radius = m_source.radius;
    const int across = (radius.width - 1) / kBlock + 1, down = (radius.height - 1) / kBlock + 1;
    Plane<Byte> own(across, down);
    for (int y = 0; y < radius.height; ++y) {
        Byte* const row = own.row(y / kBlock);
        for (int x = 0; x < radius.width; ++x)
            row[x / kBlock] = std::max(row[x / kBlock], static_cast<Byte>(countedRadius(radius.row(y)[x])));
    }
    m_pairs.largestRadius = Plane<Byte>(across, down);
    for (int y = 0; y < down; ++y)
        for (int x = 0; x < across; ++x) {
            Byte& largest = m_pairs.largestRadius.row(y)[x];
            for (int ny = std::max(y - kAround, 0); ny <= std::min(y + kAround, down - 1); ++ny)
                for (int nx = std::max(x - kAround, 0); nx <= std::min(x + kAround, across - 1); ++nx)
                    largest = std::max(largest, own.row(ny)[nx]);
        }
}

void TileGather::gather(const Tile& tile, const ImageView& target) const {
    // Row by row: radii differ so much that bands would leave workers waiting.
    runTasks(tile.height, m_workers, [&](int row) {
        if (m_pairs.across > 0)
            gatherRowAvx2(m_source, m_pairs, m_kernels, tile, tile.y + row, target.row(row));
        else
            gatherRow(m_source, tile, tile.y + row, target.row(row));
    });
}

}  // namespace zellab::Bokeh
