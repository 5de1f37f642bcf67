#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

#include "bokeh/tileGather.h"

namespace zellab::Bokeh {

namespace {

constexpr int kGroup = 16;  // pixels that share a walk, in two vectors of eight
constexpr int kReach = KernelSet::kReach;
constexpr int kFull = 0xffff;

/// Column distances of a group's neighbours from its first pixel, by pairs that begin at even columns.
constexpr int kFirstDistance = -kMaxRadius - 1, kLastDistance = kMaxRadius + kGroup;
constexpr int kDistances = kLastDistance - kFirstDistance + 1;
static_assert(kLastDistance <= kReach && kGroup - kFirstDistance <= kReach + 1,
              "a window of sixteen weights stays inside its kernel row");

/// A mask of two 16-bit lanes: whether a pixel looks as far as the pair's first neighbour, and as its second.
constexpr std::uint32_t pairMask(bool first, bool second) {
    return (first ? kFull : 0u) | (second ? std::uint32_t{kFull} << 16 : 0u);
}

/// For each reach, the masks of pixels that all look that far, by their distance right of the first neighbour. As
/// with kernels, the next pixel's is the next.
struct LevelMasks {
    static constexpr int kEntries = 2 * kReach + 1;
    std::uint32_t rows[kRadii][kEntries];

    LevelMasks() {
        for (int reach = 0; reach < kRadii; ++reach)
            for (int i = -kReach; i <= kReach; ++i)
                rows[reach][i + kReach] = pairMask(std::abs(i) <= reach, std::abs(i - 1) <= reach);
    }
};

/// The look-around of sixteen pixels.
struct Group {
    int x = 0, y = 0;
    int count = 0;                  // pixels that are wanted
    int largest = 0, smallest = 0;  // of their reaches
    alignas(32) std::int32_t reach[kGroup];
    alignas(32) std::uint32_t masks[kDistances][kGroup];  // where the reaches differ
    /// The masks for a pair that begins at the first pixel's column, and bytes from a column's to the next's.
    const char* firstMask = nullptr;
    std::ptrdiff_t maskStep = 0;
};

ZEL_TARGET_AVX2 void fillMasks(Group& group) {
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    for (int half = 0; half < 2; ++half) {
        const __m256i place = _mm256_add_epi32(lanes, _mm256_set1_epi32(8 * half));
        const __m256i reach = _mm256_load_si256(reinterpret_cast<const __m256i*>(group.reach) + half);
        const auto unseen = [&](int column) ZEL_TARGET_AVX2 {
            return _mm256_cmpgt_epi32(_mm256_abs_epi32(_mm256_sub_epi32(place, _mm256_set1_epi32(column))),
                                      reach);
        };
        for (int column = kFirstDistance; column <= kLastDistance; ++column) {
            const __m256i both = _mm256_blend_epi16(unseen(column), unseen(column + 1), 0xaa);
            _mm256_store_si256(reinterpret_cast<__m256i*>(group.masks[column - kFirstDistance]) + half,
                               _mm256_xor_si256(both, _mm256_set1_epi32(-1)));
        }
    }
}

void prepareGroup(Group& group, const Byte* radii, int maximumRadius) {
    static const LevelMasks kLevelMasks;
    group.largest = 0;
    group.smallest = kMaxRadius;
    for (int lane = 0; lane < kGroup; ++lane) {
        // Those that are not wanted look as far as the last.
        const int reach = std::min(countedRadius(radii[std::min(lane, group.count - 1)]), maximumRadius);
        group.reach[lane] = reach;
        group.largest = std::max(group.largest, reach);
        group.smallest = std::min(group.smallest, reach);
    }
    if (group.smallest == group.largest) {
        group.firstMask = reinterpret_cast<const char*>(kLevelMasks.rows[group.largest] + kReach);
        group.maskStep = -static_cast<std::ptrdiff_t>(sizeof(std::uint32_t));
    } else {
        fillMasks(group);
        group.firstMask = reinterpret_cast<const char*>(group.masks[-kFirstDistance]);
        group.maskStep = sizeof group.masks[0];
    }
}

/// Sums of sixteen pixels: 32-bit sums of the products, poured out into their low and high halves before they
/// overflow. For red, green, blue and the weight, eight pixels after eight.
class Sums {
public:
    __m256i now[8];

    ZEL_TARGET_AVX2 Sums() {
        for (int i = 0; i < 8; ++i)
            now[i] = m_low[i] = m_high[i] = m_wide[i] = m_wideLow[i] = m_wideHigh[i] = _mm256_setzero_si256();
    }
    ZEL_TARGET_AVX2 void pour(bool wide) {
        const __m256i mask = _mm256_set1_epi32(kFull);
        for (int i = 0; i < 8; ++i) {
            m_low[i] = _mm256_add_epi32(m_low[i], _mm256_and_si256(now[i], mask));
            m_high[i] = _mm256_add_epi32(m_high[i], _mm256_srai_epi32(now[i], 16));
            now[i] = _mm256_setzero_si256();
        }
        if (!wide) return;
        for (int i = 0; i < 8; ++i) {
            m_wideLow[i] = _mm256_add_epi32(m_wideLow[i], _mm256_and_si256(m_wide[i], mask));
            m_wideHigh[i] = _mm256_add_epi32(m_wideHigh[i], _mm256_srai_epi32(m_wide[i], 16));
            m_wide[i] = _mm256_setzero_si256();
        }
    }
    [[gnu::always_inline]] ZEL_TARGET_AVX2 inline void add(__m256i first, __m256i second,
                                                           const NeighbourPair& pair) {
        for (int c = 0; c < 4; ++c) {
            const __m256i value = both(pair, c);
            now[2 * c] = _mm256_add_epi32(now[2 * c], _mm256_madd_epi16(first, value));
            now[2 * c + 1] = _mm256_add_epi32(now[2 * c + 1], _mm256_madd_epi16(second, value));
        }
    }
    ZEL_TARGET_AVX2 void addWide(__m256i first, __m256i second, const NeighbourPair& pair) {
        for (int c = 0; c < 4; ++c) {
            const __m256i value = both(pair, c);
            m_wide[2 * c] = _mm256_add_epi32(m_wide[2 * c], _mm256_madd_epi16(first, value));
            m_wide[2 * c + 1] = _mm256_add_epi32(m_wide[2 * c + 1], _mm256_madd_epi16(second, value));
        }
    }
    /// Whole numbers that a double holds: sums of channel `c`, for sixteen pixels.
    ZEL_TARGET_AVX2 void whole(int c, double* out) const {
        constexpr double kHigh = 65536.0, kWide = 1 << NeighbourPair::kLowBits;
        for (int half = 0; half < 2; ++half) {
            alignas(32) std::int32_t parts[4][8];
            const int i = 2 * c + half;
            const __m256i all[4] = {m_low[i], m_high[i], m_wideLow[i], m_wideHigh[i]};
            for (int k = 0; k < 4; ++k) _mm256_store_si256(reinterpret_cast<__m256i*>(parts[k]), all[k]);
            for (int lane = 0; lane < 8; ++lane)
                out[8 * half + lane] = parts[0][lane] + parts[1][lane] * kHigh +
                                       (parts[2][lane] + parts[3][lane] * kHigh) * kWide;
        }
    }

private:
    [[gnu::always_inline]] ZEL_TARGET_AVX2 static inline __m256i both(const NeighbourPair& pair, int c) {
        int values;
        __builtin_memcpy(&values, pair.values + 2 * c, sizeof values);
        return _mm256_set1_epi32(values);
    }
    __m256i m_low[8], m_high[8], m_wide[8], m_wideLow[8], m_wideHigh[8];
};

/// A row of neighbours, seen from a group: all pointers belong to the neighbours' row.
struct NeighbourRow {
    const NeighbourPair *low, *high;
    const Byte* kinds;
    const std::uint16_t* runEnds;
    const Byte* radii;
    const Byte* records;  // null: record 0
    int dy;               // from the group's row down to the neighbours'
    __m256i seen[2];      // masks of the pixels that look that far up or down
};

inline __m256i ZEL_TARGET_AVX2 load(const char* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

/// Pairs of one radius, [first, end). kMasked: some pixel does not look as far as they reach.
template <bool kMasked, bool kWide>
[[gnu::always_inline]] ZEL_TARGET_AVX2 inline void addRun(Sums& sums, const Group& group,
                                                          const NeighbourRow& row, const std::int16_t* kernel,
                                                          int first, int end) {
    const char* weights = reinterpret_cast<const char*>(kernel + std::ptrdiff_t{2} * (group.x - 2 * first));
    const char* mask = group.firstMask + group.maskStep * (2 * first - group.x);
    for (int pair = first; pair < end; ++pair) {
        __m256i near = load(weights), far = load(weights + 32);
        if constexpr (kMasked) {
            near = _mm256_and_si256(near, _mm256_and_si256(load(mask), row.seen[0]));
            far = _mm256_and_si256(far, _mm256_and_si256(load(mask + 32), row.seen[1]));
            mask += 2 * group.maskStep;
        }
        weights -= 4 * sizeof(std::int16_t);
        sums.add(near, far, row.low[pair]);
        if constexpr (kWide) sums.addWide(near, far, row.high[pair]);
    }
}

/// A pair whose radii or kernels differ: its weights are put together from two rows of single ones.
ZEL_TARGET_AVX2 void addMixed(Sums& sums, const Group& group, const NeighbourRow& row,
                              const KernelSet& kernels, int pair, int lastColumn) {
    const int column = 2 * pair, distance = column - group.x;
    const auto window = [&](int neighbour, int right) ZEL_TARGET_AVX2 {
        const int record = row.records ? row.records[neighbour] : 0;
        const Byte* const middle = kernels.rowTowards(record, countedRadius(row.radii[neighbour]), row.dy);
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(middle - right));
    };
    // Beyond the picture a pair's values are 0.
    const __m128i first = window(column, distance),
                  second = window(std::min(column + 1, lastColumn), distance + 1);
    const char* const mask = group.firstMask + group.maskStep * distance;
    const __m256i near = _mm256_and_si256(_mm256_cvtepu8_epi16(_mm_unpacklo_epi8(first, second)),
                                          _mm256_and_si256(load(mask), row.seen[0]));
    const __m256i far = _mm256_and_si256(_mm256_cvtepu8_epi16(_mm_unpackhi_epi8(first, second)),
                                         _mm256_and_si256(load(mask + 32), row.seen[1]));
    sums.add(near, far, row.low[pair]);
    if (row.kinds[pair] & NeighbourPairs::kWide) sums.addWide(near, far, row.high[pair]);
}

/// All neighbours of a row, `reach` columns to either side of the group at most.
ZEL_TARGET_AVX2 void addRow(Sums& sums, const Group& group, const NeighbourRow& row,
                            const GatherSource& source, const KernelPairs& kernels, int reach) {
    const int lastColumn = source.image.width - 1;
    const int last = std::min(group.x + kGroup - 1 + reach, lastColumn) / 2;
    for (int pair = std::max(group.x - reach, 0) / 2; pair <= last;) {
        const Byte kind = row.kinds[pair];
        if (kind & NeighbourPairs::kMixed) {
            addMixed(sums, group, row, *source.kernels, pair++, lastColumn);
            continue;
        }
        const int radius = kind & ~NeighbourPairs::kWide, next = row.runEnds[pair];
        const int support = kernels.support(row.dy)[radius];
        if (support >= 0) {
            const int first = std::max(pair, std::max(group.x - support, 0) / 2);
            const int end = std::min({next, last + 1, (group.x + kGroup - 1 + support) / 2 + 1});
            const std::int16_t* const kernel = kernels.row(radius, row.dy);
            const bool masked = radius > group.smallest, wide = (kind & NeighbourPairs::kWide) != 0;
            if (!masked && !wide)
                addRun<false, false>(sums, group, row, kernel, first, end);
            else if (!wide)
                addRun<true, false>(sums, group, row, kernel, first, end);
            else
                addRun<true, true>(sums, group, row, kernel, first, end);
        }
        pair = next;
    }
}

ZEL_TARGET_AVX2 void walkNeighbours(const GatherSource& source, const NeighbourPairs& pairs,
                                    const KernelPairs& kernels, const Group& group, Sums& sums) {
    // What one row adds to a sum at most, and how many such fit.
    const std::int64_t row32 = std::int64_t{255} * std::max(pairs.largestLow, 1 << NeighbourPair::kLowBits) *
                               (2 * group.largest + 1);
    const int rowsPerPour = static_cast<int>(std::numeric_limits<std::int32_t>::max() / row32);
    const bool spins = source.spin.data != nullptr, wide = !pairs.high.empty();
    const int around =
        pairs.largestRadius.row(group.y / NeighbourPairs::kBlock)[group.x / NeighbourPairs::kBlock];
    const int top = std::max(group.y - group.largest, 0),
              bottom = std::min(group.y + group.largest, source.image.height - 1);
    int rows = 0;
    for (int ny = top; ny <= bottom; ++ny) {
        NeighbourRow row;
        const std::ptrdiff_t first = pairs.across * ny;
        row.low = pairs.low.data() + first;
        row.high = wide ? pairs.high.data() + first : nullptr;
        row.kinds = pairs.kind.data() + first;
        row.runEnds = pairs.runEnd.data() + first;
        row.radii = source.radius.row(ny);
        row.records = spins ? source.spin.row(ny) : nullptr;
        row.dy = ny - group.y;
        const int reach =
            spins ? group.largest : std::min(group.largest, kernels.supportUpTo(around, row.dy));
        if (reach < 0) continue;
        const __m256i away = _mm256_set1_epi32(std::abs(row.dy) - 1);
        for (int half = 0; half < 2; ++half)
            row.seen[half] = _mm256_cmpgt_epi32(
                _mm256_load_si256(reinterpret_cast<const __m256i*>(group.reach) + half), away);
        addRow(sums, group, row, source, kernels, reach);
        if (++rows == rowsPerPour) {
            sums.pour(wide);
            rows = 0;
        }
    }
    sums.pour(wide);
}

/// As finishPixel, sixteen times.
ZEL_TARGET_AVX2 void finishGroup(const GatherSource& source, const Sums& sums, const Group& group,
                                 Byte* target) {
    double whole[4][kGroup];
    for (int c = 0; c < 4; ++c) sums.whole(c, whole[c]);
    for (int lane = 0; lane < group.count; ++lane) {
        const auto sum = [&](int c) {
            return static_cast<std::uint64_t>(whole[c][lane] +
                                              (c < 3 ? NeighbourPair::kMiddle * whole[3][lane] : 0.0));
        };
        finishPixel({sum(0), sum(1), sum(2), sum(3)}, source.look, source.image.at(group.x + lane, group.y),
                    target + std::ptrdiff_t{4} * lane);
    }
}

}  // namespace

ZEL_TARGET_AVX2 void gatherRowAvx2(const GatherSource& source, const NeighbourPairs& pairs,
                                   const KernelPairs& kernels, const Tile& tile, int y, Byte* target) {
    Group group;
    group.y = y;
    for (int done = 0; done < tile.width; done += kGroup) {
        group.x = tile.x + done;
        group.count = std::min(tile.width - done, kGroup);
        prepareGroup(group, source.radius.row(y) + group.x, source.maximumRadius);
        Sums sums;
        walkNeighbours(source, pairs, kernels, group, sums);
        finishGroup(source, sums, group, target + std::ptrdiff_t{4} * done);
    }
}

}  // namespace zellab::Bokeh
