#include <immintrin.h>

#include <cstdint>

#include "zellab/imageproc/blur/stackBlurLanes.h"

namespace zellab {

namespace {

/// 32 sums of 32 bits each, in the order in which widen() leaves them and narrow() takes them back.
struct Sums {
    __m256i v[4];
};

struct alignas(32) Group {
    std::int32_t sum[kLaneGroup];
    std::int32_t slope[kLaneGroup];
};

ZEL_TARGET_AVX2 inline __m256i loadBytes(const Byte* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

ZEL_TARGET_AVX2 inline Sums loadSums(const std::int32_t* values) {
    const auto* vectors = reinterpret_cast<const __m256i*>(values);
    return {{_mm256_load_si256(vectors), _mm256_load_si256(vectors + 1), _mm256_load_si256(vectors + 2),
             _mm256_load_si256(vectors + 3)}};
}

ZEL_TARGET_AVX2 inline void storeSums(std::int32_t* values, const Sums& sums) {
    for (int k = 0; k < 4; ++k) _mm256_store_si256(reinterpret_cast<__m256i*>(values) + k, sums.v[k]);
}

/// Signed words to sums: even words, then odd words, of either half. A multiply-add with 1 and 0 extends the
/// sign in one instruction.
ZEL_TARGET_AVX2 inline Sums widen(__m256i low, __m256i high) {
    const __m256i even = _mm256_set1_epi32(1), odd = _mm256_set1_epi32(1 << 16);
    return {{_mm256_madd_epi16(low, even), _mm256_madd_epi16(low, odd), _mm256_madd_epi16(high, even),
             _mm256_madd_epi16(high, odd)}};
}

ZEL_TARGET_AVX2 inline Sums widenBytes(__m256i bytes) {
    const __m256i zero = _mm256_setzero_si256();
    return widen(_mm256_unpacklo_epi8(bytes, zero), _mm256_unpackhi_epi8(bytes, zero));
}

/// Values of 0 to 255 back to bytes.
ZEL_TARGET_AVX2 inline __m256i narrow(const Sums& q) {
    const __m256i low = _mm256_or_si256(q.v[0], _mm256_slli_epi32(q.v[1], 16));
    const __m256i high = _mm256_or_si256(q.v[2], _mm256_slli_epi32(q.v[3], 16));
    return _mm256_packus_epi16(low, high);
}

/// enter - 2 centre + leave.
ZEL_TARGET_AVX2 inline Sums bend(__m256i enter, __m256i centre, __m256i leave) {
    const __m256i zero = _mm256_setzero_si256();
    __m256i low = _mm256_add_epi16(_mm256_unpacklo_epi8(enter, zero), _mm256_unpacklo_epi8(leave, zero));
    __m256i high = _mm256_add_epi16(_mm256_unpackhi_epi8(enter, zero), _mm256_unpackhi_epi8(leave, zero));
    const __m256i centreLow = _mm256_unpacklo_epi8(centre, zero);
    const __m256i centreHigh = _mm256_unpackhi_epi8(centre, zero);
    low = _mm256_sub_epi16(low, _mm256_add_epi16(centreLow, centreLow));
    high = _mm256_sub_epi16(high, _mm256_add_epi16(centreHigh, centreHigh));
    return widen(low, high);
}

/// The quotients; corrected where sums have more than 24 bits.
template <bool kCorrected>
ZEL_TARGET_AVX2 inline Sums divide(const Sums& sums, __m256 reciprocal, __m256i divisor) {
    Sums q;
    for (int k = 0; k < 4; ++k) {
        q.v[k] = _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(sums.v[k]), reciprocal));
        if (kCorrected) {
            const __m256i rest = _mm256_sub_epi32(sums.v[k], _mm256_mullo_epi32(q.v[k], divisor));
            // All ones, which is -1, where the rest still falls short of the divisor.
            const __m256i short1 = _mm256_cmpgt_epi32(divisor, rest);
            q.v[k] = _mm256_add_epi32(q.v[k], _mm256_add_epi32(short1, _mm256_set1_epi32(1)));
        }
    }
    return q;
}

template <bool kCorrected>
class Avx2Lanes final : public LaneBlur {
public:
    explicit Avx2Lanes(const LaneBlurSpec& settings)
        : m_groups(static_cast<std::size_t>(settings.groups)),
          m_radius(settings.radius),
          m_reciprocal(kCorrected ? reciprocalFromBelow(settings.radius + 1)
                                  : reciprocalFromAbove(settings.radius + 1)),
          m_kept(settings.keepAlpha ? static_cast<std::int32_t>(0xff000000u) : 0) {}

    void begin(const std::vector<const Byte*>& first) override {
        for (std::size_t g = 0; g < m_groups.size(); ++g) beginGroup(m_groups[g], first, g * kLaneGroup);
    }

    void advance(const Taps& taps, Byte* out) override {
        for (std::size_t g = 0; g < m_groups.size(); ++g)
            advanceGroup(m_groups[g], taps, g * kLaneGroup, out + g * kLaneGroup);
    }

private:
    ZEL_TARGET_AVX2 void beginGroup(Group& group, const std::vector<const Byte*>& first,
                                    std::size_t offset) const {
        Sums sum{}, slope{};
        for (std::size_t i = 1; i < first.size(); ++i) {
            const Sums sample = widenBytes(loadBytes(first[i] + offset));
            for (int k = 0; k < 4; ++k) {
                slope.v[k] = _mm256_add_epi32(slope.v[k], sample.v[k]);
                sum.v[k] = _mm256_add_epi32(sum.v[k], slope.v[k]);
            }
        }
        // The repeats of both end samples: `beyond` of the last one, radius + 1 of position 0.
        const int beyond = m_radius - static_cast<int>(first.size() - 1);
        const __m256i lastTriangle = _mm256_set1_epi32(beyond * (beyond + 1) / 2);
        const __m256i startTriangle = _mm256_set1_epi32((m_radius + 1) * (m_radius + 2) / 2);
        const __m256i repeats = _mm256_set1_epi32(beyond), radius = _mm256_set1_epi32(m_radius);
        const Sums start = widenBytes(loadBytes(first.front() + offset));
        const Sums last = widenBytes(loadBytes(first.back() + offset));
        for (int k = 0; k < 4; ++k) {
            __m256i ends = _mm256_mullo_epi32(slope.v[k], repeats);
            ends = _mm256_add_epi32(ends, _mm256_mullo_epi32(last.v[k], lastTriangle));
            ends = _mm256_add_epi32(ends, _mm256_mullo_epi32(start.v[k], startTriangle));
            sum.v[k] = _mm256_add_epi32(sum.v[k], ends);
            slope.v[k] = _mm256_add_epi32(slope.v[k], _mm256_mullo_epi32(last.v[k], repeats));
            slope.v[k] = _mm256_sub_epi32(slope.v[k], _mm256_mullo_epi32(start.v[k], radius));
        }
        storeSums(group.sum, sum);
        storeSums(group.slope, slope);
    }

    ZEL_TARGET_AVX2 void advanceGroup(Group& group, const Taps& taps, std::size_t offset, Byte* out) const {
        const std::size_t pitch = m_groups.size() * kLaneGroup;
        const __m256 reciprocal = _mm256_set1_ps(m_reciprocal);
        const __m256i divisor = _mm256_set1_epi32((m_radius + 1) * (m_radius + 1));
        const __m256i kept = _mm256_set1_epi32(m_kept);
        Sums sum = loadSums(group.sum), slope = loadSums(group.slope);
        for (int i = 0; i < taps.count; ++i) {
            const __m256i centre = loadBytes(taps.centre[i] + offset);
            const __m256i blurred = narrow(divide<kCorrected>(sum, reciprocal, divisor));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + pitch * static_cast<std::size_t>(i)),
                                _mm256_blendv_epi8(blurred, centre, kept));
            const Sums bent =
                bend(loadBytes(taps.enter[i] + offset), centre, loadBytes(taps.leave[i] + offset));
            for (int k = 0; k < 4; ++k) {
                slope.v[k] = _mm256_add_epi32(slope.v[k], bent.v[k]);
                sum.v[k] = _mm256_add_epi32(sum.v[k], slope.v[k]);
            }
        }
        storeSums(group.sum, sum);
        storeSums(group.slope, slope);
    }

    std::vector<Group> m_groups;
    int m_radius;
    float m_reciprocal;
    std::int32_t m_kept;  // byte mask of a pixel
};

}  // namespace

std::unique_ptr<LaneBlur> makeAvx2LaneBlur(const LaneBlurSpec& settings) {
    if (settings.radius >= kLastSingleReach) return std::make_unique<Avx2Lanes<true>>(settings);
    return std::make_unique<Avx2Lanes<false>>(settings);
}

}  // namespace zellab
