#include "zellab/imageproc/sfdsp/bilinearRows.h"

#include <immintrin.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/simdLevel.h"

namespace zellab {

namespace {

using Step = BilinearStep;

/// The positions of one axis, reached by adding a single-precision step. The sums differ in their last bits
/// from products, and from a walk that starts anew in the middle: every worker reads this one table.
/// Additions that drift past the last sample are held there.
std::vector<Step> walkAxis(int source, int target) {
    constexpr float kLargestIndex = 2147483520.0f;  // the largest float that an int holds
    const int last = source - 1;
    const float step = static_cast<float>(source) / static_cast<float>(target);
    std::vector<Step> steps(static_cast<std::size_t>(target));
    float position = 0.0f;
    for (Step& s : steps) {
        const int whole = static_cast<int>(std::min(position, kLargestIndex));
        s.index = std::min(whole, last);
        s.next = s.index < last ? s.index + 1 : last;
        s.fraction = position - static_cast<float>(whole);
        position += step;
    }
    return steps;
}

/// One target row: two source rows and the share of the lower one.
struct RowPair {
    const Byte* top;
    const Byte* bottom;
    float fraction;
};

/// Reads one RGBA pixel as four floats, blended between the two rows.
inline __m128 blendedPixel(const RowPair& rows, std::ptrdiff_t offset, __m128 fraction) {
    const __m128i zero = _mm_setzero_si128();
    int a, b;
    std::memcpy(&a, rows.top + offset, 4);
    std::memcpy(&b, rows.bottom + offset, 4);
    const __m128i top = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(a), zero), zero);
    const __m128i bottom = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(b), zero), zero);
    const __m128 difference = _mm_cvtepi32_ps(_mm_sub_epi32(bottom, top));
    return _mm_add_ps(_mm_cvtepi32_ps(top), _mm_mul_ps(difference, fraction));
}

constexpr int kOpaque = static_cast<int>(0xff000000u);

void scaleRgbaRow(const RowPair& rows, const std::vector<Step>& columns, std::size_t begin, Byte* out) {
    const __m128 fy = _mm_set1_ps(rows.fraction);
    for (std::size_t x = begin; x < columns.size(); ++x) {
        const Step& s = columns[x];
        const __m128 left = blendedPixel(rows, std::ptrdiff_t{4} * s.index, fy);
        const __m128 right = blendedPixel(rows, std::ptrdiff_t{4} * s.next, fy);
        const __m128 mixed = _mm_add_ps(_mm_mul_ps(_mm_sub_ps(right, left), _mm_set1_ps(s.fraction)), left);
        const __m128i words = _mm_packs_epi32(_mm_cvttps_epi32(mixed), _mm_setzero_si128());
        const int pixel = _mm_cvtsi128_si32(_mm_packus_epi16(words, words)) | kOpaque;
        std::memcpy(out + 4 * x, &pixel, 4);
    }
}

/// Eight samples, or two pixels, blended between the two rows.
ZEL_TARGET_AVX2 inline __m256 blendRows(__m256i top, __m256i bottom, __m256 fraction) {
    const __m256 difference = _mm256_cvtepi32_ps(_mm256_sub_epi32(bottom, top));
    return _mm256_add_ps(_mm256_cvtepi32_ps(top), _mm256_mul_ps(difference, fraction));
}

/// trunc((right - left) * fraction + left) of eight samples, as words.
ZEL_TARGET_AVX2 inline __m128i mixColumns(__m256 left, __m256 right, __m256 fraction) {
    const __m256 mixed = _mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(right, left), fraction), left);
    const __m256i whole = _mm256_cvttps_epi32(mixed);
    return _mm_packs_epi32(_mm256_castsi256_si128(whole), _mm256_extracti128_si256(whole, 1));
}

/// The blended left and right neighbours of one output pixel, side by side, from the two rows.
struct RgbaRows {
    RowPair rows;
    ZEL_TARGET_AVX2 __m256 at(int index) const {
        const std::ptrdiff_t offset = std::ptrdiff_t{4} * index;
        const __m128i top = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows.top + offset));
        const __m128i bottom = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows.bottom + offset));
        return blendRows(_mm256_cvtepu8_epi32(top), _mm256_cvtepu8_epi32(bottom),
                         _mm256_set1_ps(rows.fraction));
    }
};

/// The same from a line that is blended already.
struct RgbaLine {
    const float* line;
    ZEL_TARGET_AVX2 __m256 at(int index) const { return _mm256_loadu_ps(line + std::ptrdiff_t{4} * index); }
};

/// Eight pixels at once over the columns before `end`, whose right neighbour is the next sample in memory.
/// Returns the first column left to do.
template <typename Neighbours>
ZEL_TARGET_AVX2 std::size_t mixRgbaColumns(const Neighbours& neighbours, const int* indices,
                                           const float* fractions, std::size_t end, Byte* out) {
    const __m256i opaque = _mm256_set1_epi32(kOpaque);
    // The packs work half by half; this puts the pixels back in a row.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    const __m256i firstShare = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1), two = _mm256_set1_epi32(2);
    std::size_t x = 0;
    for (; x + 8 <= end; x += 8) {
        const __m256 shares = _mm256_loadu_ps(fractions + x);
        __m256i share = firstShare, pairs[4];
        for (std::size_t k = 0; k < 4; ++k) {
            const __m256 first = neighbours.at(indices[x + 2 * k]);
            const __m256 second = neighbours.at(indices[x + 2 * k + 1]);
            const __m256 left = _mm256_permute2f128_ps(first, second, 0x20);
            const __m256 right = _mm256_permute2f128_ps(first, second, 0x31);
            const __m256 fx = _mm256_permutevar8x32_ps(shares, share);
            pairs[k] =
                _mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(right, left), fx), left));
            share = _mm256_add_epi32(share, two);
        }
        const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(pairs[0], pairs[1]),
                                                   _mm256_packs_epi32(pairs[2], pairs[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * x),
                            _mm256_or_si256(_mm256_permutevar8x32_epi32(packed, order), opaque));
    }
    return x;
}

void scalePlaneRow(const RowPair& rows, const std::vector<Step>& columns, std::size_t begin, Byte* out) {
    const auto blended = [&](int x) {
        const int top = rows.top[x], difference = rows.bottom[x] - top;
        return static_cast<float>(top) + static_cast<float>(difference) * rows.fraction;
    };
    for (std::size_t x = begin; x < columns.size(); ++x) {
        const Step& s = columns[x];
        const float left = blended(s.index), right = blended(s.next);
        out[x] = static_cast<Byte>((right - left) * s.fraction + left);
    }
}

/// A sample and its right neighbour, the sample in the low byte.
inline short pairAt(const Byte* row, const Step& s) {
    short pair;
    std::memcpy(&pair, row + s.index, 2);
    return pair;
}

ZEL_TARGET_AVX2 inline __m128i loadPairs(const Byte* row, const Step* s) {
    return _mm_setr_epi16(pairAt(row, s[0]), pairAt(row, s[1]), pairAt(row, s[2]), pairAt(row, s[3]),
                          pairAt(row, s[4]), pairAt(row, s[5]), pairAt(row, s[6]), pairAt(row, s[7]));
}

/// Eight samples at once over the columns before `end`; otherwise as mixRgbaColumns.
ZEL_TARGET_AVX2 std::size_t scalePlaneRowAvx2(const RowPair& rows, const std::vector<Step>& columns,
                                              const float* fractions, std::size_t end, Byte* out) {
    const __m256 fy = _mm256_set1_ps(rows.fraction);
    const __m128i low = _mm_set1_epi16(255);
    std::size_t x = 0;
    for (; x + 8 <= end; x += 8) {
        const __m128i top = loadPairs(rows.top, &columns[x]), bottom = loadPairs(rows.bottom, &columns[x]);
        const __m256 left = blendRows(_mm256_cvtepu16_epi32(_mm_and_si128(top, low)),
                                      _mm256_cvtepu16_epi32(_mm_and_si128(bottom, low)), fy);
        const __m256 right = blendRows(_mm256_cvtepu16_epi32(_mm_srli_epi16(top, 8)),
                                       _mm256_cvtepu16_epi32(_mm_srli_epi16(bottom, 8)), fy);
        const __m128i words = mixColumns(left, right, _mm256_loadu_ps(fractions + x));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), _mm_packus_epi16(words, words));
    }
    return x;
}

// Rows that grow read every source sample more than once: the two rows are blended first, all samples at
// once, and stay floats in a line that the columns are mixed from.

/// Samples that the vectors below may read past the last one; they repeat it.
constexpr std::size_t kLineSlack = 16;

ZEL_TARGET_AVX2 void blendLine(const RowPair& rows, std::size_t count, std::size_t channels, float* line) {
    const __m256 fy = _mm256_set1_ps(rows.fraction);
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m128i top = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows.top + i));
        const __m128i bottom = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows.bottom + i));
        _mm256_storeu_ps(line + i, blendRows(_mm256_cvtepu8_epi32(top), _mm256_cvtepu8_epi32(bottom), fy));
    }
    for (; i < count; ++i) {
        const int top = rows.top[i], difference = rows.bottom[i] - top;
        line[i] = static_cast<float>(top) + static_cast<float>(difference) * rows.fraction;
    }
    for (; i < count + kLineSlack; ++i) line[i] = line[i - channels];
}

/// Eight samples at once. They step by one source sample at most, so the left neighbours of all eight lie
/// within eight samples, and the right ones within the eight from the next.
ZEL_TARGET_AVX2 std::size_t enlargePlaneRow(const float* line, const std::vector<Step>& columns,
                                            const int* indices, const float* fractions, Byte* out) {
    std::size_t x = 0;
    for (; x + 8 <= columns.size(); x += 8) {
        const int base = indices[x];
        const __m256i own = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(indices + x));
        const __m256i within = _mm256_sub_epi32(own, _mm256_set1_epi32(base));
        const __m256 left = _mm256_permutevar8x32_ps(_mm256_loadu_ps(line + base), within);
        const __m256 right = _mm256_permutevar8x32_ps(_mm256_loadu_ps(line + base + 1), within);
        const __m128i words = mixColumns(left, right, _mm256_loadu_ps(fractions + x));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), _mm_packus_epi16(words, words));
    }
    return x;
}

}  // namespace

BilinearRows::BilinearRows(const Samples& source, int targetWidth, int targetHeight)
    : m_source(source),
      m_columns(walkAxis(source.width, targetWidth)),
      m_lines(walkAxis(source.height, targetHeight)),
      m_wide(platform::simdLevel() == platform::SimdLevel::avx2),
      m_enlarges(m_wide && targetWidth >= source.width) {
    for (const Step& s : m_columns) {
        m_fractions.push_back(s.fraction);
        m_indices.push_back(s.index);
        if (s.next != s.index) ++m_inner;
    }
}

void BilinearRows::scale(int y, Scratch& scratch, Byte* out) const {
    const Step& at = line(y);
    const RowPair rows{m_source.row(at.index), m_source.row(at.next), at.fraction};
    if (m_enlarges) {
        scratch.resize(m_source.rowBytes() + kLineSlack);
        blendLine(rows, m_source.rowBytes(), static_cast<std::size_t>(m_source.channels), scratch.data());
    }
    // The columns that go by vectors, then what they leave.
    std::size_t done = 0;
    if (m_source.channels == 4) {
        if (m_enlarges)
            done = mixRgbaColumns(RgbaLine{scratch.data()}, m_indices.data(), m_fractions.data(),
                                  m_columns.size(), out);
        else if (m_wide)
            done = mixRgbaColumns(RgbaRows{rows}, m_indices.data(), m_fractions.data(), m_inner, out);
        scaleRgbaRow(rows, m_columns, done, out);
    } else {
        if (m_enlarges)
            done = enlargePlaneRow(scratch.data(), m_columns, m_indices.data(), m_fractions.data(), out);
        else if (m_wide)
            done = scalePlaneRowAvx2(rows, m_columns, m_fractions.data(), m_inner, out);
        scalePlaneRow(rows, m_columns, done, out);
    }
}

}  // namespace zellab
