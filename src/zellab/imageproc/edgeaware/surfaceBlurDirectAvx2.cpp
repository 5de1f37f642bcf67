#include <immintrin.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/simdLevel.h"
#include "zellab/imageproc/edgeaware/surfaceBlurDirect.h"

namespace zellab::surface {

namespace {

/// Centres of one vector. Each stands in two neighbouring bytes, which meet two neighbouring samples.
constexpr int kCentres = 16;
/// A tile's columns in groups of so many centres. A tile has one more group on either side, which holds
/// whatever the disc reaches.
constexpr int kGroups = 16, kColumns = kGroups * kCentres;
constexpr std::ptrdiff_t kPairBytes = std::ptrdiff_t{2} * (kColumns + 2 * kCentres);
/// Distances that the two look-ups of 16 bytes know.
constexpr int kDistances = 32;

/// How far apart the values around a group of centres lie: what tells which steps can be left out.
enum class Spread {
    near,  // less than 16, and none is 0: one look-up does
    fair,  // less than 128, and none is 0: differences keep their sign in a byte
    any,
};

/// Look-ups in both halves of a vector, and what counts everywhere, by the centre's value.
struct Tables {
    alignas(32) Byte low[32], high[32], once[32];
    bool everywhere;
    alignas(32) std::int32_t weight[kLevels], moment[kLevels];

    Tables(const Job& job, int channel) : everywhere(!job.everywhere.empty()) {
        const Weights& weights = job.weights;
        for (int d = 0; d < kDistances; ++d) {
            const int doubled = d == 0 ? 2 : 1;
            const int w = d > weights.reach ? 0 : weights.weight[std::size_t(weights.reach + d)] / doubled;
            Byte* const half = d < 16 ? low : high;
            half[d % 16] = half[d % 16 + 16] = static_cast<Byte>(w);
            if (d < 16) once[d] = once[d + 16] = static_cast<Byte>(doubled);
        }
        for (int centre = 0; centre < kLevels; ++centre) {
            weight[centre] = moment[centre] = 0;
            for (const Byte* pixel : job.everywhere) {
                const int distance = pixel[channel] - centre;
                if (pixel[channel] == 0 || std::abs(distance) > weights.reach) continue;
                const auto at = static_cast<std::size_t>(weights.reach + distance);
                weight[centre] += weights.weight[at];
                moment[centre] += weights.moment[at];
            }
        }
    }
};

ZEL_TARGET_AVX2 inline __m256i load(const Byte* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

/// The sums of sixteen centres over part of a disc. Low and high are those of the unpacking instructions.
struct Sums {
    __m256i weightLow, weightHigh, momentLow, momentHigh;
};

/// Sums of one or two rows of a disc, in 16 bits.
struct RowSums {
    __m256i weight, moment;
};

template <Spread kSpread>
ZEL_TARGET_AVX2 inline void addPair(__m256i values, __m256i centres, __m256i counted, const Tables& tables,
                                    RowSums& sums) {
    const __m256i low = load(tables.low);
    __m256i difference = _mm256_sub_epi8(values, centres), weight, times;
    if (kSpread == Spread::near) {
        const __m256i distance = _mm256_abs_epi8(difference);
        weight = _mm256_shuffle_epi8(low, distance);
        times = _mm256_shuffle_epi8(load(tables.once), distance);
    } else {
        __m256i distance;
        if (kSpread == Spread::fair) {
            distance = _mm256_abs_epi8(difference);
        } else {
            distance = _mm256_or_si256(_mm256_subs_epu8(values, centres), _mm256_subs_epu8(centres, values));
            // Value 0 never counts: the padding must not darken the rim.
            distance = _mm256_or_si256(distance, _mm256_cmpeq_epi8(values, _mm256_setzero_si256()));
        }
        // A shuffle gives 0 where the index has its top bit set: distances past the 16 of its table.
        const __m256i past = _mm256_set1_epi8(0x70);
        const __m256i beyond = _mm256_xor_si256(distance, _mm256_set1_epi8(0x10));
        weight = _mm256_or_si256(_mm256_shuffle_epi8(low, _mm256_adds_epu8(distance, past)),
                                 _mm256_shuffle_epi8(load(tables.high), _mm256_adds_epu8(beyond, past)));
        times = _mm256_sub_epi8(_mm256_set1_epi8(1), _mm256_cmpeq_epi8(distance, _mm256_setzero_si256()));
    }
    weight = _mm256_and_si256(weight, counted);
    sums.weight = _mm256_add_epi16(sums.weight, _mm256_maddubs_epi16(weight, times));
    sums.moment = _mm256_add_epi16(sums.moment, _mm256_maddubs_epi16(weight, difference));
}

/// Adds the samples of one row up to `half` columns to either side of the centres.
template <Spread kSpread>
ZEL_TARGET_AVX2 inline void addRow(const Byte* pairs, int half, __m256i centres, const Tables& tables,
                                   RowSums& sums) {
    const __m256i both = _mm256_set1_epi8(-1), first = _mm256_set1_epi16(0xff);
    const Byte* at = pairs - std::ptrdiff_t{2} * half;
    for (int k = 0; k < half; ++k, at += 4) addPair<kSpread>(load(at), centres, both, tables, sums);
    addPair<kSpread>(load(at), centres, first, tables, sums);
}

template <Spread kSpread>
ZEL_TARGET_AVX2 Sums sumDisc(const Byte* pairs, const Disc& disc, const Tables& tables, __m256i centres) {
    const __m256i zero = _mm256_setzero_si256(), ones = _mm256_set1_epi16(1);
    Sums sums{zero, zero, zero, zero};
    for (int d = 0; d <= disc.radius; ++d) {
        const int half = disc.half[static_cast<std::size_t>(d)];
        RowSums below{zero, zero}, above{zero, zero};
        addRow<kSpread>(pairs + d * kPairBytes, half, centres, tables, below);
        if (d > 0) addRow<kSpread>(pairs - d * kPairBytes, half, centres, tables, above);
        const auto addTo = [&](__m256i& low, __m256i& high, __m256i a, __m256i b) ZEL_TARGET_AVX2 {
            low = _mm256_add_epi32(low, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), ones));
            high = _mm256_add_epi32(high, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), ones));
        };
        addTo(sums.weightLow, sums.weightHigh, below.weight, above.weight);
        addTo(sums.momentLow, sums.momentHigh, below.moment, above.moment);
    }
    return sums;
}

/// By how much the mean of eight centres lies above them; 0 where nothing counts. The quotient is below 32
/// and its distance from the next whole number at least 1 / weight, more than single precision rounds by.
ZEL_TARGET_AVX2 inline __m256i shift(__m256i weight, __m256i moment) {
    const __m256i numerator = _mm256_add_epi32(moment, _mm256_srai_epi32(weight, 1));
    const __m256 quotient =
        _mm256_floor_ps(_mm256_div_ps(_mm256_cvtepi32_ps(numerator), _mm256_cvtepi32_ps(weight)));
    const __m256i none = _mm256_cmpeq_epi32(weight, _mm256_setzero_si256());
    return _mm256_andnot_si256(none, _mm256_cvttps_epi32(quotient));
}

/// Adds what counts everywhere for eight centres.
ZEL_TARGET_AVX2 inline void addEverywhere(__m256i& weight, __m256i& moment, __m256i centres,
                                          const Tables& tables) {
    weight = _mm256_add_epi32(weight, _mm256_i32gather_epi32(tables.weight, centres, 4));
    moment = _mm256_add_epi32(moment, _mm256_i32gather_epi32(tables.moment, centres, 4));
}

/// The means around sixteen centres, those whose pairs begin at `pairs`.
ZEL_TARGET_AVX2 void blurGroup(const Byte* pairs, const Disc& disc, const Tables& tables, Spread spread,
                               Byte* out) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i words = _mm256_and_si256(load(pairs), _mm256_set1_epi16(0xff));
    const __m256i centres = _mm256_or_si256(words, _mm256_slli_epi16(words, 8));
    Sums sums = spread == Spread::near   ? sumDisc<Spread::near>(pairs, disc, tables, centres)
                : spread == Spread::fair ? sumDisc<Spread::fair>(pairs, disc, tables, centres)
                                         : sumDisc<Spread::any>(pairs, disc, tables, centres);
    if (tables.everywhere) {
        addEverywhere(sums.weightLow, sums.momentLow, _mm256_unpacklo_epi16(words, zero), tables);
        addEverywhere(sums.weightHigh, sums.momentHigh, _mm256_unpackhi_epi16(words, zero), tables);
    }
    const __m256i shifts =
        _mm256_packs_epi32(shift(sums.weightLow, sums.momentLow), shift(sums.weightHigh, sums.momentHigh));
    const __m256i means = _mm256_add_epi16(words, shifts);
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(means, means), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
}

/// Least and largest of 32 bytes.
struct Range {
    Byte least, largest;
};
ZEL_TARGET_AVX2 inline Byte leastOf(__m256i bytes) {
    const __m128i half = _mm_min_epu8(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
    const __m128i words = _mm_min_epu8(half, _mm_srli_epi16(half, 8));
    return static_cast<Byte>(_mm_cvtsi128_si32(_mm_minpos_epu16(words)));
}
ZEL_TARGET_AVX2 inline Range rangeOf(__m256i least, __m256i largest) {
    const __m256i inverse = _mm256_xor_si256(largest, _mm256_set1_epi8(-1));
    return {leastOf(least), static_cast<Byte>(255 - leastOf(inverse))};
}

Spread spreadOf(const Range (&groups)[3]) {
    const int least = std::min({groups[0].least, groups[1].least, groups[2].least});
    const int largest = std::max({groups[0].largest, groups[1].largest, groups[2].largest});
    if (least == 0 || largest - least > 127) return Spread::any;
    return largest - least < 16 ? Spread::near : Spread::fair;
}

/// A tile of the picture: rows [begin, end), kColumns columns from `left`.
class Tile {
public:
    Tile(const Job& job, int begin, int end)
        : m_job(job),
          m_begin(begin),
          m_end(end),
          m_pairs(static_cast<std::size_t>((end - begin + 2 * job.disc.radius) * kPairBytes)),
          m_means(static_cast<std::size_t>((end - begin) * kColumns * 3)) {}

    ZEL_TARGET_AVX2 void blur(int left, const Tables (&tables)[3]) {
        for (int channel = 0; channel < 3; ++channel) {
            loadChannel(left, channel);
            for (int y = m_begin; y < m_end; ++y) blurRow(left, y, tables[channel], means(channel, y));
        }
        for (int y = m_begin; y < m_end; ++y) store(left, y);
    }

private:
    Byte* pairs(int y) { return m_pairs.data() + (y - m_begin + m_job.disc.radius) * kPairBytes; }
    Byte* means(int channel, int y) {
        return m_means.data() + std::ptrdiff_t{channel * (m_end - m_begin) + y - m_begin} * kColumns;
    }

    /// Lays out one channel: each sample beside its right neighbour. What lies beyond the rim is 0.
    ZEL_TARGET_AVX2 void loadChannel(int left, int channel) {
        const Padded& from = m_job.before;
        const int first = left - kCentres;
        const int begin = std::max(first, -from.rim), last = m_job.image.width + from.rim - 1;
        const int end = std::min(first + kColumns + 2 * kCentres, last);
        const int shift = 8 * channel;
        for (int y = m_begin - from.rim; y < m_end + from.rim; ++y) {
            Byte* const row = pairs(y);
            const Byte* const pixels = from.at(begin, y);
            std::memset(row, 0, static_cast<std::size_t>(kPairBytes));
            Byte* const to = row + std::ptrdiff_t{2} * (begin - first);
            for (int i = 0; i < end - begin; ++i) {
                std::uint32_t own, next;
                std::memcpy(&own, pixels + std::ptrdiff_t{4} * i, 4);
                std::memcpy(&next, pixels + std::ptrdiff_t{4} * i + 4, 4);
                const auto pair =
                    static_cast<std::uint16_t>((own >> shift & 255u) | (next >> shift & 255u) << 8);
                std::memcpy(to + std::ptrdiff_t{2} * i, &pair, 2);
            }
            if (end == last) to[std::ptrdiff_t{2} * (end - begin)] = from.at(last, y)[channel];
        }
    }

    bool counts(int left, int y, int group) const {
        const int x = left + group * kCentres;
        if (x >= m_job.image.width) return false;
        if (!m_job.mask.valid()) return true;
        const Byte* mask = m_job.mask.row(y) + x;
        return std::any_of(mask, mask + std::min(kCentres, m_job.image.width - x),
                           [](Byte m) { return m != 0; });
    }

    ZEL_TARGET_AVX2 void blurRow(int left, int y, const Tables& tables, Byte* out) {
        const Byte* const row = pairs(y);
        const int radius = m_job.disc.radius;
        Range ranges[kGroups + 2];
        for (int group = 0; group < kGroups + 2; ++group) {
            const Byte* at = row + std::ptrdiff_t{2} * group * kCentres - radius * kPairBytes;
            __m256i least = load(at), largest = least;
            for (int d = -radius; d < radius; ++d) {
                at += kPairBytes;
                least = _mm256_min_epu8(least, load(at));
                largest = _mm256_max_epu8(largest, load(at));
            }
            ranges[group] = rangeOf(least, largest);
        }
        for (int group = 0; group < kGroups; ++group) {
            if (!counts(left, y, group)) continue;
            const Spread spread = spreadOf({ranges[group], ranges[group + 1], ranges[group + 2]});
            blurGroup(row + std::ptrdiff_t{2} * (group + 1) * kCentres, m_job.disc, tables, spread,
                      out + group * kCentres);
        }
    }

    ZEL_TARGET_AVX2 void store(int left, int y) {
        const Byte *red = means(0, y), *green = means(1, y), *blue = means(2, y);
        const Byte* const mask = m_job.mask.valid() ? m_job.mask.row(y) + left : nullptr;
        Byte* to = m_job.image.at(left, y);
        const int count = std::min(kColumns, m_job.image.width - left);
        for (int x = 0; x < count; ++x, to += 4) {
            std::uint32_t pixel;
            std::memcpy(&pixel, to, 4);
            const std::uint32_t fresh = (pixel & 0xff000000u) | std::uint32_t{red[x]} |
                                        std::uint32_t{green[x]} << 8 | std::uint32_t{blue[x]} << 16;
            pixel = mask && mask[x] == 0 ? pixel : fresh;
            std::memcpy(to, &pixel, 4);
        }
    }

    const Job& m_job;
    int m_begin, m_end;
    std::vector<Byte> m_pairs;
    std::vector<Byte> m_means;  // of kColumns centres a row, channel by channel
};

}  // namespace

bool fitsDirect(const Disc& disc, const Weights& weights) {
    // Both neighbours of a pair stay within the groups beside a tile, and 16 bits hold a row's sums.
    if (disc.radius > kCentres - 2 || weights.reach >= kDistances) return false;
    const int moment = *std::max_element(weights.moment.begin(), weights.moment.end());
    const int weight = *std::max_element(weights.weight.begin(), weights.weight.end());
    return (2 * disc.radius + 1) * std::max(moment, weight) <= INT16_MAX;
}

void blurDirectAvx2(const Job& job, int begin, int end) {
    const Tables tables[3] = {{job, 0}, {job, 1}, {job, 2}};
    Tile tile(job, begin, end);
    for (int left = 0; left < job.image.width; left += kColumns) tile.blur(left, tables);
}

}  // namespace zellab::surface
