#include <immintrin.h>

#include <cstring>

#include "zellab/imageproc/resample/cubicSampleLanes.h"

namespace zellab::cubic {

namespace {

constexpr int kLanes = 8;
using Taps = AxisTaps<kLanes>;

ZEL_TARGET_AVX2 inline __m256 nearWeight(__m256 v) {
    const __m256 slope = _mm256_sub_ps(_mm256_mul_ps(_mm256_set1_ps(1.25f), v), _mm256_set1_ps(2.25f));
    return _mm256_add_ps(_mm256_mul_ps(slope, _mm256_mul_ps(v, v)), _mm256_set1_ps(1.0f));
}

/// The baseline's steps on eight positions.
ZEL_TARGET_AVX2 inline void axisTaps(const float* positions, int size, Taps& taps) {
    __m256 p = _mm256_loadu_ps(positions);
    p = _mm256_and_ps(p, _mm256_cmp_ps(p, _mm256_set1_ps(-1.0f), _CMP_GT_OQ));
    const __m256 above = _mm256_cmp_ps(p, _mm256_set1_ps(static_cast<float>(size)), _CMP_GE_OQ);
    p = _mm256_blendv_ps(p, _mm256_set1_ps(static_cast<float>(size - 1)), above);
    const __m256i whole = _mm256_cvttps_epi32(p);
    _mm256_store_si256(reinterpret_cast<__m256i*>(taps.base), _mm256_sub_epi32(whole, _mm256_set1_epi32(1)));

    const __m256 one = _mm256_set1_ps(1.0f);
    const __m256 f = _mm256_sub_ps(p, _mm256_cvtepi32_ps(whole));
    const __m256 t = _mm256_add_ps(f, one);
    const __m256 inner =
        _mm256_mul_ps(_mm256_sub_ps(_mm256_mul_ps(_mm256_set1_ps(0.75f), t), _mm256_set1_ps(3.75f)), t);
    const __m256 w0 =
        _mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(_mm256_set1_ps(-6.0f), inner), t), _mm256_set1_ps(3.0f));
    const __m256 w1 = nearWeight(f), w2 = nearWeight(_mm256_sub_ps(one, f));
    _mm256_store_ps(taps.weights[0], w0);
    _mm256_store_ps(taps.weights[1], w1);
    _mm256_store_ps(taps.weights[2], w2);
    _mm256_store_ps(taps.weights[3], _mm256_sub_ps(_mm256_sub_ps(_mm256_sub_ps(one, w0), w1), w2));
}

/// The weights of two neighbouring samples for one tap, four lanes each.
ZEL_TARGET_AVX2 inline __m256 pairWeights(const float* weights) {
    const __m128 both = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(weights)));
    return _mm256_permutevar8x32_ps(_mm256_castps128_ps256(both), _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
}

/// Tap `index` of four in both halves: its four bytes as 32-bit integers.
ZEL_TARGET_AVX2 inline __m256 tapOf(__m256i bytes, __m256i spread) {
    return _mm256_cvtepi32_ps(_mm256_shuffle_epi8(bytes, spread));
}

ZEL_TARGET_AVX2 inline __m256i spreadOf(int tap) {
    const int b = 4 * tap;
    const auto lane = [](int byte) { return static_cast<int>(0x80808000u | static_cast<unsigned>(byte)); };
    return _mm256_setr_epi32(lane(b), lane(b + 1), lane(b + 2), lane(b + 3), lane(b), lane(b + 1),
                             lane(b + 2), lane(b + 3));
}

ZEL_TARGET_AVX2 inline void storeColour(int colour, Byte* out) {
    std::uint32_t pixel;
    std::memcpy(&pixel, out, 4);
    pixel = (pixel & 0xff000000u) | (static_cast<std::uint32_t>(colour) & 0x00ffffffu);
    std::memcpy(out, &pixel, 4);
}

/// Two neighbouring samples at once, one in each half of the vectors.
ZEL_TARGET_AVX2 inline void samplePair(const Byte* first, const Byte* second, std::ptrdiff_t stride,
                                       const Taps& columns, const Taps& rows, int lane, Byte* out) {
    const __m256i spread0 = spreadOf(0), spread1 = spreadOf(1), spread2 = spreadOf(2), spread3 = spreadOf(3);
    const __m256 w0 = pairWeights(columns.weights[0] + lane), w1 = pairWeights(columns.weights[1] + lane);
    const __m256 w2 = pairWeights(columns.weights[2] + lane), w3 = pairWeights(columns.weights[3] + lane);
    __m256 sum = _mm256_set1_ps(0.5f);
    for (int tap = 0; tap < kTaps; ++tap, first += stride, second += stride) {
        const __m256i bytes = _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(second)), 1);
        __m256 row =
            _mm256_add_ps(_mm256_mul_ps(tapOf(bytes, spread0), w0), _mm256_mul_ps(tapOf(bytes, spread1), w1));
        row = _mm256_add_ps(row, _mm256_mul_ps(tapOf(bytes, spread2), w2));
        row = _mm256_add_ps(row, _mm256_mul_ps(tapOf(bytes, spread3), w3));
        sum = _mm256_add_ps(sum, _mm256_mul_ps(row, pairWeights(rows.weights[tap] + lane)));
    }
    const __m256i whole = _mm256_cvttps_epi32(sum);
    const __m256i words = _mm256_packs_epi32(whole, whole);
    const __m256i colours = _mm256_packus_epi16(words, words);
    storeColour(_mm256_extract_epi32(colours, 0), out);
    storeColour(_mm256_extract_epi32(colours, 4), out + 4);
}

/// The first `count` of eight samples.
ZEL_TARGET_AVX2 inline void sampleBlock(const CubicSource& source, const float* x, const float* y, int count,
                                        Byte* out) {
    const ConstImageView& window = source.pixels;
    Taps columns, rows;
    axisTaps(x, source.imageWidth, columns);
    axisTaps(y, source.imageHeight, rows);
    const auto within = [&](int column, int row) {
        return column >= 0 && row >= 0 && column <= window.width - kTaps && row <= window.height - kTaps;
    };
    for (int lane = 0; lane < count; lane += 2) {
        const int x0 = columns.base[lane] - source.left, x1 = columns.base[lane + 1] - source.left;
        const int y0 = rows.base[lane] - source.top, y1 = rows.base[lane + 1] - source.top;
        Byte* target = out + std::ptrdiff_t{4} * lane;
        if (within(x0, y0) && within(x1, y1)) {
            samplePair(window.at(x0, y0), window.at(x1, y1), window.stride, columns, rows, lane, target);
        } else {
            sampleRunPlain(source, x + lane, y + lane, 2, target);
        }
    }
}

}  // namespace

ZEL_TARGET_AVX2 void sampleRunAvx2(const CubicSource& source, const float* x, const float* y, int count,
                                   Byte* out) {
    for (; count >= kLanes; count -= kLanes, x += kLanes, y += kLanes, out += 4 * kLanes)
        sampleBlock(source, x, y, kLanes, out);
    if (count == 0) return;
    // The rest, filled up with its last position.
    float restX[kLanes], restY[kLanes];
    Byte rest[4 * kLanes];
    for (int i = 0; i < kLanes; ++i) {
        restX[i] = x[i < count ? i : count - 1];
        restY[i] = y[i < count ? i : count - 1];
    }
    const auto bytes = static_cast<std::size_t>(4 * count);
    std::memcpy(rest, out, bytes);
    std::memset(rest + bytes, 0, sizeof rest - bytes);
    sampleBlock(source, restX, restY, count, rest);
    std::memcpy(out, rest, bytes);
}

}  // namespace zellab::cubic
