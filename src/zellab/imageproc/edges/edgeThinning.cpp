#include "zellab/imageproc/edges/edgeThinning.h"

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zellab {

namespace {

/// Words that a row of vectors may read past its pixels.
constexpr std::size_t kSlack = 32;

/// Gradient and magnitude of one row.
struct GradientRow {
    explicit GradientRow(std::size_t width)
        : gx(width + kSlack), gy(width + kSlack), magnitude(width + kSlack) {}
    std::vector<std::int16_t> gx, gy, magnitude;
};

/// trunc(sqrt(gx * gx + gy * gy)). By vectors because the compiler keeps the library call's error flag, and
/// with it one root at a time. Single precision is exact here: all squares lie below 2^17.
void fillMagnitudePlain(const std::int16_t* gx, const std::int16_t* gy, std::int16_t* out,
                        std::size_t count) {
    const auto roots = [](__m128i pairs) {
        return _mm_cvttps_epi32(_mm_sqrt_ps(_mm_cvtepi32_ps(_mm_madd_epi16(pairs, pairs))));
    };
    for (std::size_t x = 0; x < count; x += 8) {
        const __m128i dx = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gx + x));
        const __m128i dy = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gy + x));
        const __m128i low = roots(_mm_unpacklo_epi16(dx, dy)), high = roots(_mm_unpackhi_epi16(dx, dy));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm_packs_epi32(low, high));
    }
}

ZEL_TARGET_AVX2 void fillMagnitudeAvx2(const std::int16_t* gx, const std::int16_t* gy, std::int16_t* out,
                                       std::size_t count) {
    for (std::size_t x = 0; x < count; x += 16) {
        const __m256i dx = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(gx + x));
        const __m256i dy = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(gy + x));
        __m256i low = _mm256_unpacklo_epi16(dx, dy), high = _mm256_unpackhi_epi16(dx, dy);
        low = _mm256_cvttps_epi32(_mm256_sqrt_ps(_mm256_cvtepi32_ps(_mm256_madd_epi16(low, low))));
        high = _mm256_cvttps_epi32(_mm256_sqrt_ps(_mm256_cvtepi32_ps(_mm256_madd_epi16(high, high))));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + x), _mm256_packs_epi32(low, high));
    }
}

/// Fills `out` for row y: central differences halved toward zero, one-sided whole differences at the border.
void gradientRow(const PlaneView<const Byte>& plane, int y, platform::SimdLevel level, GradientRow& out) {
    const Byte* row = plane.row(y);
    const Byte* above = plane.row(std::max(y - 1, 0));
    const Byte* below = plane.row(std::min(y + 1, plane.height - 1));
    const bool inner = y > 0 && y < plane.height - 1;
    const auto last = static_cast<std::size_t>(plane.width) - 1;
    std::int16_t *gx = out.gx.data(), *gy = out.gy.data();
    for (std::size_t x = 1; x < last; ++x) gx[x] = static_cast<std::int16_t>((row[x + 1] - row[x - 1]) / 2);
    gx[0] = static_cast<std::int16_t>(row[1] - row[0]);
    gx[last] = static_cast<std::int16_t>(row[last] - row[last - 1]);
    if (inner)
        for (std::size_t x = 0; x <= last; ++x) gy[x] = static_cast<std::int16_t>((below[x] - above[x]) / 2);
    else
        for (std::size_t x = 0; x <= last; ++x) gy[x] = static_cast<std::int16_t>(below[x] - above[x]);
    platform::pick(level, fillMagnitudePlain, fillMagnitudeAvx2)(gx, gy, out.magnitude.data(), last + 1);
}

/// The three rows at one column.
struct Columns {
    const std::int16_t *gx, *gy, *up, *here, *down;
};

// The pixels of eight or sixteen columns that neither neighbour along their gradient exceeds keep their
// magnitude, the rest become 0. The neighbours lie between two pixels, by the ratio of the smaller to the
// larger component: the straight one, across the larger component, and the diagonal one. By vectors because
// noisy directions defeat the branch predictor.

inline __m128i load(const std::int16_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

/// a where the mask is set, b elsewhere.
inline __m128i pick(__m128i mask, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

inline __m128i absolute(__m128i words) {
    return _mm_max_epi16(words, _mm_sub_epi16(_mm_setzero_si128(), words));
}

/// What the comparison of one half of the lanes needs, as floats.
struct Neighbours {
    __m128 magnitude, smaller, larger, straightA, diagonalA, straightB, diagonalB;

    /// Mask of the lanes that no neighbour exceeds.
    __m128i kept() const {
        const __m128 ratio = _mm_div_ps(smaller, larger);
        const __m128 a = _mm_add_ps(straightA, _mm_mul_ps(_mm_sub_ps(diagonalA, straightA), ratio));
        const __m128 b = _mm_add_ps(straightB, _mm_mul_ps(_mm_sub_ps(diagonalB, straightB), ratio));
        return _mm_castps_si128(_mm_and_ps(_mm_cmpge_ps(magnitude, a), _mm_cmpge_ps(magnitude, b)));
    }
};

/// The low half of words that are not negative, as floats.
inline __m128 lowFloats(__m128i words) {
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(words, _mm_setzero_si128()));
}

/// The high half of words that are not negative, as floats.
inline __m128 highFloats(__m128i words) {
    return _mm_cvtepi32_ps(_mm_unpackhi_epi16(words, _mm_setzero_si128()));
}

inline __m128i thinEight(const Columns& at, int least) {
    const __m128i magnitude = load(at.here);
    const __m128i enough = _mm_cmpgt_epi16(magnitude, _mm_set1_epi16(static_cast<short>(least - 1)));
    if (_mm_movemask_epi8(enough) == 0) return _mm_setzero_si128();
    const __m128i gx = load(at.gx), gy = load(at.gy), dx = absolute(gx), dy = absolute(gy);
    const __m128i steep = _mm_cmpgt_epi16(dy, dx);
    const __m128i sameSign = _mm_cmpgt_epi16(_mm_xor_si128(gx, gy), _mm_set1_epi16(-1));
    const __m128i larger = _mm_max_epi16(_mm_max_epi16(dx, dy), _mm_set1_epi16(1)),
                  smaller = _mm_min_epi16(dx, dy);
    const __m128i upRight = load(at.up + 1), downLeft = load(at.down - 1);
    const __m128i straightA = pick(steep, load(at.up), load(at.here - 1));
    const __m128i straightB = pick(steep, load(at.down), load(at.here + 1));
    const __m128i diagonalA = pick(sameSign, load(at.up - 1), pick(steep, upRight, downLeft));
    const __m128i diagonalB = pick(sameSign, load(at.down + 1), pick(steep, downLeft, upRight));
    const Neighbours low{lowFloats(magnitude), lowFloats(smaller),   lowFloats(larger),
                         lowFloats(straightA), lowFloats(diagonalA), lowFloats(straightB),
                         lowFloats(diagonalB)};
    const Neighbours high{highFloats(magnitude), highFloats(smaller),   highFloats(larger),
                          highFloats(straightA), highFloats(diagonalA), highFloats(straightB),
                          highFloats(diagonalB)};
    const __m128i kept = _mm_packs_epi32(low.kept(), high.kept());
    return _mm_and_si128(_mm_and_si128(magnitude, enough), kept);
}

ZEL_TARGET_AVX2 inline __m256i loadAvx2(const std::int16_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

/// a where the mask is set, b elsewhere.
ZEL_TARGET_AVX2 inline __m256i pickAvx2(__m256i mask, __m256i a, __m256i b) {
    return _mm256_blendv_epi8(b, a, mask);
}

/// What the comparison of one half of the lanes needs, as floats.
struct NeighboursAvx2 {
    __m256 magnitude, smaller, larger, straightA, diagonalA, straightB, diagonalB;

    /// Mask of the lanes that no neighbour exceeds.
    ZEL_TARGET_AVX2 __m256i kept() const {
        const __m256 ratio = _mm256_div_ps(smaller, larger);
        const __m256 a = _mm256_add_ps(straightA, _mm256_mul_ps(_mm256_sub_ps(diagonalA, straightA), ratio));
        const __m256 b = _mm256_add_ps(straightB, _mm256_mul_ps(_mm256_sub_ps(diagonalB, straightB), ratio));
        return _mm256_castps_si256(
            _mm256_and_ps(_mm256_cmp_ps(magnitude, a, _CMP_GE_OQ), _mm256_cmp_ps(magnitude, b, _CMP_GE_OQ)));
    }
};

/// The low half of words that are not negative, as floats.
ZEL_TARGET_AVX2 inline __m256 lowFloatsAvx2(__m256i words) {
    return _mm256_cvtepi32_ps(_mm256_unpacklo_epi16(words, _mm256_setzero_si256()));
}

/// The high half of words that are not negative, as floats.
ZEL_TARGET_AVX2 inline __m256 highFloatsAvx2(__m256i words) {
    return _mm256_cvtepi32_ps(_mm256_unpackhi_epi16(words, _mm256_setzero_si256()));
}

ZEL_TARGET_AVX2 inline __m256i thinSixteen(const Columns& at, int least) {
    const __m256i magnitude = loadAvx2(at.here);
    const __m256i enough = _mm256_cmpgt_epi16(magnitude, _mm256_set1_epi16(static_cast<short>(least - 1)));
    if (_mm256_movemask_epi8(enough) == 0) return _mm256_setzero_si256();
    const __m256i gx = loadAvx2(at.gx), gy = loadAvx2(at.gy), dx = _mm256_abs_epi16(gx),
                  dy = _mm256_abs_epi16(gy);
    const __m256i steep = _mm256_cmpgt_epi16(dy, dx);
    const __m256i sameSign = _mm256_cmpgt_epi16(_mm256_xor_si256(gx, gy), _mm256_set1_epi16(-1));
    const __m256i larger = _mm256_max_epi16(_mm256_max_epi16(dx, dy), _mm256_set1_epi16(1)),
                  smaller = _mm256_min_epi16(dx, dy);
    const __m256i upRight = loadAvx2(at.up + 1), downLeft = loadAvx2(at.down - 1);
    const __m256i straightA = pickAvx2(steep, loadAvx2(at.up), loadAvx2(at.here - 1));
    const __m256i straightB = pickAvx2(steep, loadAvx2(at.down), loadAvx2(at.here + 1));
    const __m256i diagonalA = pickAvx2(sameSign, loadAvx2(at.up - 1), pickAvx2(steep, upRight, downLeft));
    const __m256i diagonalB = pickAvx2(sameSign, loadAvx2(at.down + 1), pickAvx2(steep, downLeft, upRight));
    const NeighboursAvx2 low{lowFloatsAvx2(magnitude), lowFloatsAvx2(smaller),   lowFloatsAvx2(larger),
                             lowFloatsAvx2(straightA), lowFloatsAvx2(diagonalA), lowFloatsAvx2(straightB),
                             lowFloatsAvx2(diagonalB)};
    const NeighboursAvx2 high{highFloatsAvx2(magnitude), highFloatsAvx2(smaller),   highFloatsAvx2(larger),
                              highFloatsAvx2(straightA), highFloatsAvx2(diagonalA), highFloatsAvx2(straightB),
                              highFloatsAvx2(diagonalB)};
    const __m256i kept = _mm256_packs_epi32(low.kept(), high.kept());
    return _mm256_and_si256(_mm256_and_si256(magnitude, enough), kept);
}

void storeFirst(__m128i bytes, std::size_t count, Byte* out) {
    alignas(16) Byte all[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(all), bytes);
    std::memcpy(out, all, count);
}

/// Thins the columns from 1 to `end`; `at` stands at column 0.
void thinColumnsPlain(const Columns& at, std::size_t end, int least, Byte* out) {
    for (std::size_t x = 1; x < end; x += 8) {
        const __m128i kept = thinEight({at.gx + x, at.gy + x, at.up + x, at.here + x, at.down + x}, least);
        const __m128i bytes = _mm_packus_epi16(kept, kept);
        if (x + 8 <= end)
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), bytes);
        else
            storeFirst(bytes, end - x, out + x);
    }
}

ZEL_TARGET_AVX2 void thinColumnsAvx2(const Columns& at, std::size_t end, int least, Byte* out) {
    for (std::size_t x = 1; x < end; x += 16) {
        const __m256i kept = thinSixteen({at.gx + x, at.gy + x, at.up + x, at.here + x, at.down + x}, least);
        const __m128i bytes =
            _mm_packus_epi16(_mm256_castsi256_si128(kept), _mm256_extracti128_si256(kept, 1));
        if (x + 16 <= end)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), bytes);
        else
            storeFirst(bytes, end - x, out + x);
    }
}

}  // namespace

void thinGradient(const PlaneView<const Byte>& plane, const PlaneView<Byte>& ridges, int begin, int end,
                  int least, platform::SimdLevel level) {
    const auto width = static_cast<std::size_t>(plane.width);
    std::array<GradientRow, 3> window{GradientRow(width), GradientRow(width), GradientRow(width)};
    const auto slot = [&](int y) -> GradientRow& { return window[static_cast<std::size_t>(y % 3)]; };
    int filled = std::max(begin - 1, 0);
    for (int y = begin; y < end; ++y) {
        Byte* out = ridges.row(y);
        if (y == 0 || y == plane.height - 1) {
            std::memset(out, 0, width);
            continue;
        }
        for (; filled <= y + 1; ++filled) gradientRow(plane, filled, level, slot(filled));
        const GradientRow& middle = slot(y);
        const Columns at{middle.gx.data(), middle.gy.data(), slot(y - 1).magnitude.data(),
                         middle.magnitude.data(), slot(y + 1).magnitude.data()};
        platform::pick(level, thinColumnsPlain, thinColumnsAvx2)(at, width - 1, least, out);
        out[0] = out[width - 1] = 0;
    }
}

}  // namespace zellab
