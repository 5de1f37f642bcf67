#include "bokeh/weightedRows.h"

namespace zellab::Bokeh {

namespace {

inline __m128i loadBytes(const Byte* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}
}  // namespace

void sumRows(const Byte* const* rows, int taps, const std::int16_t* weights, int count, std::int16_t* sums) {
    const __m128i zero = _mm_setzero_si128();
    int i = 0;
    for (; i + 16 <= count; i += 16) {
        __m128i sum[4] = {zero, zero, zero, zero};
        for (int k = 0; k < taps; k += 2) {
            const __m128i a = loadBytes(rows[k] + i), b = loadBytes(rows[k + 1] + i),
                          w = pairOfWeights(weights + k);
            const __m128i low = _mm_unpacklo_epi8(a, b), high = _mm_unpackhi_epi8(a, b);
            sum[0] = _mm_add_epi32(sum[0], _mm_madd_epi16(_mm_unpacklo_epi8(low, zero), w));
            sum[1] = _mm_add_epi32(sum[1], _mm_madd_epi16(_mm_unpackhi_epi8(low, zero), w));
            sum[2] = _mm_add_epi32(sum[2], _mm_madd_epi16(_mm_unpacklo_epi8(high, zero), w));
            sum[3] = _mm_add_epi32(sum[3], _mm_madd_epi16(_mm_unpackhi_epi8(high, zero), w));
        }
        constexpr int kShift = kWeightBits - kLevelBits;
        auto* const out = reinterpret_cast<__m128i*>(sums + i);
        _mm_storeu_si128(out,
                         _mm_packs_epi32(_mm_srai_epi32(sum[0], kShift), _mm_srai_epi32(sum[1], kShift)));
        _mm_storeu_si128(out + 1,
                         _mm_packs_epi32(_mm_srai_epi32(sum[2], kShift), _mm_srai_epi32(sum[3], kShift)));
    }
    for (; i < count; ++i) {
        int sum = 0;
        for (int k = 0; k < taps; ++k) sum += rows[k][i] * weights[k];
        sums[i] = static_cast<std::int16_t>(sum >> (kWeightBits - kLevelBits));
    }
}

}  // namespace zellab::Bokeh
