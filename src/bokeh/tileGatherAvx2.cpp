#include <immintrin.h>

#include <algorithm>
#include <cstdlib>

#include "bokeh/tileGather.h"

namespace zellab::Bokeh {

namespace {

constexpr int kGroup = 8;  // pixels that share a walk

/// Column distances of a group's neighbours from its first pixel, by pairs that begin at even columns.
constexpr int kFirstDistance = -kMaxRadius - 1, kLastDistance = kMaxRadius + kGroup;
constexpr int kDistances = kLastDistance - kFirstDistance + 1;
static_assert(kLastDistance <= KernelSet::kReach && kGroup - kFirstDistance <= KernelSet::kReach + 1,
              "a window of eight weights stays inside its kernel row");

/// The look-around of eight pixels: how far each looks, and masks of those that look as far as a distance.
struct Group {
    alignas(16) Byte reach[16];                  // each pixel's twice, as kernel weights are interleaved
    alignas(16) Byte columnMask[kDistances][8];  // 255 where the pixel looks that far along the row
    int largest = 0;
    int count = 0;  // pixels that are wanted
};

ZEL_TARGET_AVX2 void prepareGroup(Group& group, const Byte* radii, int count, int maximumRadius) {
    group.count = count;
    group.largest = 0;
    for (int lane = 0; lane < kGroup; ++lane) {
        const int reach = lane < count ? std::min(countedRadius(radii[lane]), maximumRadius) : 0;
        group.reach[2 * lane] = group.reach[2 * lane + 1] = static_cast<Byte>(reach);
        group.largest = std::max(group.largest, reach);
    }
    alignas(16) Byte single[16] = {};
    for (int lane = 0; lane < kGroup; ++lane) single[lane] = group.reach[2 * lane];
    const __m128i reach = _mm_load_si128(reinterpret_cast<const __m128i*>(single));
    const __m128i lanes = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 0, 0, 0, 0, 0, 0, 0, 0);
    for (int column = -group.largest - 1; column <= group.largest + kGroup; ++column) {
        const __m128i distance = _mm_abs_epi8(_mm_sub_epi8(_mm_set1_epi8(static_cast<char>(column)), lanes));
        const __m128i seen = _mm_cmpeq_epi8(_mm_max_epu8(reach, distance), reach);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(group.columnMask[column - kFirstDistance]), seen);
    }
}

/// Eight 32-bit sums for each colour and the weight: of the products' low bits and of their high bits.
struct Lanes {
    __m256i low[4], high[4];
};

ZEL_TARGET_AVX2 inline __m256i addProducts(__m256i sum, __m256i kernel, const std::int16_t* values) {
    int both;
    __builtin_memcpy(&both, values, sizeof both);
    return _mm256_add_epi32(sum, _mm256_madd_epi16(kernel, _mm256_set1_epi32(both)));
}

/// A row of neighbours, seen from a group: all pointers belong to the neighbours' row.
struct NeighbourRow {
    const NeighbourPair* pairs;
    const Byte* radii;
    const Byte* records;  // null: record 0
    const Byte* kernelBytes;
    const std::uint32_t* rows;  // kernel row of each radius, record 0
    std::size_t recordPitch;    // from a record's rows to the next's
    int firstPair, lastPair;
};

ZEL_TARGET_AVX2 inline __m128i kernelWindow(const NeighbourRow& row, int column, int distance) {
    const std::size_t record = row.records ? row.records[column] : 0;
    const Byte* const middle = row.kernelBytes + row.rows[record * row.recordPitch + row.radii[column]];
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(middle - distance));
}

template <bool kWide>
ZEL_TARGET_AVX2 inline void addRow(Lanes& sums, const Group& group, const NeighbourRow& row, int x, int dy,
                                   int lastColumn) {
    const __m128i reach = _mm_load_si128(reinterpret_cast<const __m128i*>(group.reach));
    const __m128i away = _mm_set1_epi8(static_cast<char>(dy));
    const __m128i rowMask = _mm_cmpeq_epi8(_mm_max_epu8(reach, away), reach);
    for (int pair = row.firstPair; pair <= row.lastPair; ++pair) {
        const int column = 2 * pair, distance = column - x;
        const int second = std::min(column + 1, lastColumn);  // beyond the picture a pair's values are 0
        const int apart = std::max(-distance - 1, distance - (kGroup - 1));
        if (std::max(row.radii[column], row.radii[column + 1]) < std::max(dy, apart)) continue;
        const auto* const masks =
            reinterpret_cast<const __m128i*>(group.columnMask[distance - kFirstDistance]);
        const __m128i firstKernel =
            _mm_and_si128(kernelWindow(row, column, distance), _mm_loadl_epi64(masks));
        const __m128i secondKernel = _mm_and_si128(kernelWindow(row, second, second - x),
                                                   _mm_loadl_epi64(reinterpret_cast<const __m128i*>(
                                                       group.columnMask[distance + 1 - kFirstDistance])));
        const __m256i kernel =
            _mm256_cvtepu8_epi16(_mm_and_si128(_mm_unpacklo_epi8(firstKernel, secondKernel), rowMask));
        const NeighbourPair& values = row.pairs[pair];
        for (int c = 0; c < 4; ++c) {
            sums.low[c] = addProducts(sums.low[c], kernel, values.low + 2 * c);
            if constexpr (kWide) sums.high[c] = addProducts(sums.high[c], kernel, values.high + 2 * c);
        }
    }
}

template <bool kWide>
ZEL_TARGET_AVX2 Lanes walkNeighbours(const GatherSource& source, const NeighbourPairs& pairs,
                                     const Group& group, int x, int y) {
    Lanes sums;
    for (int c = 0; c < 4; ++c) sums.low[c] = sums.high[c] = _mm256_setzero_si256();
    const int lastColumn = source.image.width - 1;
    NeighbourRow row;
    row.kernelBytes = source.kernels->bytes();
    row.firstPair = std::max(x - group.largest, 0) / 2;
    row.lastPair = std::min(x + kGroup - 1 + group.largest, lastColumn) / 2;
    row.recordPitch = KernelSet::kRowsOfRecord;
    const int top = std::max(y - group.largest, 0),
              bottom = std::min(y + group.largest, source.image.height - 1);
    for (int ny = top; ny <= bottom; ++ny) {
        row.pairs = pairs.pairs.data() + pairs.across * ny;
        row.radii = pairs.radii.data() + 2 * pairs.across * ny;
        row.records = source.spin.data ? source.spin.row(ny) : nullptr;
        row.rows = source.kernels->rowOffsets(0, ny - y);
        addRow<kWide>(sums, group, row, x, std::abs(ny - y), lastColumn);
    }
    return sums;
}

ZEL_TARGET_AVX2 void finishGroup(const GatherSource& source, const Lanes& sums, const Group& group, int x,
                                 int y, Byte* target) {
    alignas(32) std::uint32_t low[4][kGroup], high[4][kGroup];
    for (int c = 0; c < 4; ++c) {
        _mm256_store_si256(reinterpret_cast<__m256i*>(low[c]), sums.low[c]);
        _mm256_store_si256(reinterpret_cast<__m256i*>(high[c]), sums.high[c]);
    }
    for (int lane = 0; lane < group.count; ++lane) {
        std::uint64_t whole[4];
        for (int c = 0; c < 4; ++c)
            whole[c] = low[c][lane] + (std::uint64_t{high[c][lane]} << NeighbourPair::kLowBits);
        finishPixel({whole[0], whole[1], whole[2], whole[3]}, source.look, source.image.at(x + lane, y),
                    target + std::ptrdiff_t{4} * lane);
    }
}

}  // namespace

ZEL_TARGET_AVX2 void gatherRowAvx2(const GatherSource& source, const NeighbourPairs& pairs, const Tile& tile,
                                   int y, Byte* target) {
    Group group;
    for (int done = 0; done < tile.width; done += kGroup) {
        const int x = tile.x + done;
        prepareGroup(group, source.radius.row(y) + x, std::min(tile.width - done, kGroup),
                     source.maximumRadius);
        const Lanes sums = pairs.wide ? walkNeighbours<true>(source, pairs, group, x, y)
                                      : walkNeighbours<false>(source, pairs, group, x, y);
        finishGroup(source, sums, group, x, y, target + std::ptrdiff_t{4} * done);
    }
}

}  // namespace zellab::Bokeh
