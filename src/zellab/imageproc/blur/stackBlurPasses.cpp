#include "zellab/imageproc/blur/stackBlurPasses.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/simdLevel.h"
#include "zellab/imageproc/blur/rowTile.h"
#include "zellab/imageproc/blur/slotRing.h"
#include "zellab/imageproc/blur/stackBlurLanes.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

/// Width of a strip of columns in bytes.
constexpr int kStripBytes = 512;

/// A band of rows has about so many bytes for each worker: few enough to stay in the cache until both passes
/// are through, enough to be worth the start of the workers. A quarter and four times as many were slower.
constexpr std::ptrdiff_t kBandBytesPerWorker = 1 << 19;
constexpr int kFewestBandRows = 32;

template <typename Int>
constexpr Int roundUp(Int value, Int step) {
    return (value + step - 1) / step * step;
}

/// Positions that a ring keeps where `step` positions are blurred while as many are being filled.
std::size_t ringCapacity(int length, int radius, int step) {
    const std::int64_t window = std::int64_t{2} * radius + 2 + 2 * std::int64_t{step};
    return static_cast<std::size_t>(roundUp(std::min(std::int64_t{length}, window), std::int64_t{kChunk}));
}

/// A line of the picture, as long as the picture is wide or high.
struct Line {
    int length, radius;

    /// How many positions must be at hand before positions up to `end`, exclusive, are blurred.
    int neededFor(int end) const {
        return static_cast<int>(std::min(std::int64_t{length}, std::int64_t{end} + radius + 1));
    }

    /// @param offset  of the bundle's first byte in a slot
    Taps taps(const SlotRing& ring, int position, int count, std::ptrdiff_t offset) const {
        Taps taps;
        taps.count = count;
        SlotWalk enter(ring, std::int64_t{position} + radius + 1, length), centre(ring, position, length);
        SlotWalk leave(ring, std::int64_t{position} - radius - 1, length);
        for (int i = 0; i < count; ++i) {
            taps.enter[i] = enter.next() + offset;
            taps.centre[i] = centre.next() + offset;
            taps.leave[i] = leave.next() + offset;
        }
        return taps;
    }

    void begin(LaneBlur& lanes, const SlotRing& ring, std::ptrdiff_t offset) const {
        const int count = std::min(radius, length - 1) + 1;
        std::vector<const Byte*> first(static_cast<std::size_t>(count));
        SlotWalk walk(ring, 0, length);
        for (const Byte*& slot : first) slot = walk.next() + offset;
        lanes.begin(first);
    }
};

/// One blur: the ring of rows that are blurred along x, and the strips that blur them along y.
class BandedBlur {
public:
    BandedBlur(const BlurSource& source, int radius, int bandRows, const BlurSink& sink)
        : m_source(source),
          m_sink(sink),
          m_row{source.width, radius},
          m_column{source.height, radius},
          m_simd(platform::simdLevel()),
          m_rows(ringCapacity(source.height, radius, bandRows), rowSlotBytes(source)),
          m_strips(static_cast<std::size_t>((source.rowSamples() - 1) / kStripBytes + 1)) {
        clearRowEnds();
        for (auto& strip : m_strips) strip = makeLanes(kStripBytes / kLaneGroup);
    }

    int stripCount() const { return static_cast<int>(m_strips.size()); }
    int rowsNeededFor(int end) const { return m_column.neededFor(end); }

    /// Blurs some rows along x into the ring.
    void blurRows(int top, int rows) {
        RowTile tile(m_source, top, rows);
        SlotRing ring(ringCapacity(m_row.length, m_row.radius, kChunk), RowTile::kBytes);
        const auto lanes = makeLanes(RowTile::kBytes / kLaneGroup);
        alignas(32) Byte blurred[RowTile::kBytes * kChunk];
        std::int64_t loaded = 0;
        for (int x = 0, count; x < m_row.length; x += count) {
            count = std::min(kChunk, m_row.length - x);
            for (; loaded < m_row.neededFor(x + count); loaded += kChunk)
                tile.load(static_cast<int>(loaded), ring.slot(static_cast<std::size_t>(loaded)));
            if (x == 0) m_row.begin(*lanes, ring, 0);
            lanes->advance(m_row.taps(ring, x, count, 0), blurred);
            tile.store(x, blurred, m_rows);
        }
    }

    /// Blurs rows [top, end) of a strip along y; a strip goes through its bands in order.
    void blurStrip(int strip, int top, int end) {
        LaneBlur& lanes = *m_strips[static_cast<std::size_t>(strip)];
        const std::ptrdiff_t left = std::ptrdiff_t{strip} * kStripBytes;
        const std::ptrdiff_t samples = std::min<std::ptrdiff_t>(kStripBytes, m_source.rowSamples() - left);
        alignas(32) Byte blurred[kStripBytes * kChunk];
        if (top == 0) m_column.begin(lanes, m_rows, left);
        for (int y = top, count; y < end; y += count) {
            count = std::min(kChunk, end - y);
            lanes.advance(m_column.taps(m_rows, y, count, left), blurred);
            for (int i = 0; i < count; ++i) m_sink(y + i, left, samples, blurred + kStripBytes * i);
        }
    }

private:
    /// Whole strips, and one cache line more: rows at a multiple of 4096 bytes would compete for few places
    /// of the cache.
    static std::size_t rowSlotBytes(const BlurSource& source) {
        return static_cast<std::size_t>(roundUp<std::ptrdiff_t>(source.rowSamples(), kStripBytes) + 64);
    }

    /// What the last strip reads beside the picture influences nothing, but it shall have a value.
    void clearRowEnds() {
        const auto used = static_cast<std::size_t>(m_source.rowSamples());
        for (std::size_t i = 0; i < m_rows.capacity(); ++i)
            std::memset(m_rows.slot(i) + used, 0, m_rows.slotBytes() - used);
    }

    std::unique_ptr<LaneBlur> makeLanes(int groups) const {
        return makeLaneBlur({m_column.radius, groups, m_source.keepsAlpha, m_simd});
    }

    const BlurSource& m_source;
    const BlurSink& m_sink;
    Line m_row, m_column;
    platform::SimdLevel m_simd;
    SlotRing m_rows;
    std::vector<std::unique_ptr<LaneBlur>> m_strips;
};

int bandHeight(const BlurSource& source, int workers) {
    const std::ptrdiff_t rows = kBandBytesPerWorker * std::max(workers, 1) / source.rowSamples();
    const std::ptrdiff_t limited =
        std::min<std::ptrdiff_t>(std::max<std::ptrdiff_t>(rows, kFewestBandRows), source.height);
    return static_cast<int>(roundUp<std::ptrdiff_t>(limited, kChunk));
}

}  // namespace

void stackBlur(const BlurSource& source, int radius, int workers, const BlurSink& sink) {
    const int bandRows = bandHeight(source, workers);
    BandedBlur blur(source, radius, bandRows, sink);
    const int tileRows = RowTile::rowLimit(source.channels);
    int top = 0, end = 0, rowsDone = 0;
    // The rows of the next band are blurred beside the strips of this one, so that the workers meet only
    // once a band. The first round has no strips yet.
    while (top < source.height) {
        const int nextEnd =
            static_cast<int>(std::min<std::int64_t>(source.height, std::int64_t{end} + bandRows));
        const int rowsWanted = blur.rowsNeededFor(nextEnd);
        const int tiles = (rowsWanted - rowsDone + tileRows - 1) / tileRows;
        const int strips = end > 0 ? blur.stripCount() : 0;
        runTasks(tiles + strips, workers, [&](int task) {
            if (task >= tiles) return blur.blurStrip(task - tiles, top, end);
            const int row = rowsDone + task * tileRows;
            blur.blurRows(row, std::min(tileRows, rowsWanted - row));
        });
        rowsDone = rowsWanted;
        top = end;
        end = nextEnd;
    }
}

}  // namespace zellab
