#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "zellab/imageproc/resample/cubicSampleLanes.h"

namespace zellab {

namespace cubic {

namespace {

constexpr int kBlock = 4;  // positions per vector
using Taps = AxisTaps<kBlock>;

/// The steps of CubicConvolutionWeights on four fractions.
void axisTaps(const float* positions, int size, Taps& taps) {
    __m128 p = _mm_loadu_ps(positions);
    p = _mm_and_ps(p, _mm_cmpgt_ps(p, _mm_set1_ps(-1.0f)));
    const __m128 above = _mm_cmpge_ps(p, _mm_set1_ps(static_cast<float>(size)));
    const __m128 last = _mm_set1_ps(static_cast<float>(size - 1));
    p = _mm_or_ps(_mm_and_ps(above, last), _mm_andnot_ps(above, p));
    const __m128i base = _mm_cvttps_epi32(p);
    _mm_store_si128(reinterpret_cast<__m128i*>(taps.base), _mm_sub_epi32(base, _mm_set1_epi32(1)));

    const __m128 one = _mm_set1_ps(1.0f);
    const __m128 f = _mm_sub_ps(p, _mm_cvtepi32_ps(base));
    const __m128 t = _mm_add_ps(f, one), g = _mm_sub_ps(one, f);
    const __m128 inner = _mm_mul_ps(_mm_sub_ps(_mm_mul_ps(_mm_set1_ps(0.75f), t), _mm_set1_ps(3.75f)), t);
    const __m128 w0 = _mm_add_ps(_mm_mul_ps(_mm_sub_ps(_mm_set1_ps(-6.0f), inner), t), _mm_set1_ps(3.0f));
    const auto near = [&](__m128 v) {
        const __m128 slope = _mm_sub_ps(_mm_mul_ps(_mm_set1_ps(1.25f), v), _mm_set1_ps(2.25f));
        return _mm_add_ps(_mm_mul_ps(slope, _mm_mul_ps(v, v)), one);
    };
    const __m128 w1 = near(f), w2 = near(g);
    _mm_store_ps(taps.weights[0], w0);
    _mm_store_ps(taps.weights[1], w1);
    _mm_store_ps(taps.weights[2], w2);
    _mm_store_ps(taps.weights[3], _mm_sub_ps(_mm_sub_ps(_mm_sub_ps(one, w0), w1), w2));
}

/// One row of four taps: sixteen bytes, four channels a lane.
__m128 rowSum(__m128i bytes, const __m128 columnWeights[kTaps]) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_unpacklo_epi8(bytes, zero), high = _mm_unpackhi_epi8(bytes, zero);
    const __m128 p0 = _mm_cvtepi32_ps(_mm_unpacklo_epi16(low, zero));
    const __m128 p1 = _mm_cvtepi32_ps(_mm_unpackhi_epi16(low, zero));
    const __m128 p2 = _mm_cvtepi32_ps(_mm_unpacklo_epi16(high, zero));
    const __m128 p3 = _mm_cvtepi32_ps(_mm_unpackhi_epi16(high, zero));
    const __m128 first = _mm_add_ps(_mm_mul_ps(p0, columnWeights[0]), _mm_mul_ps(p1, columnWeights[1]));
    return _mm_add_ps(_mm_add_ps(first, _mm_mul_ps(p2, columnWeights[2])), _mm_mul_ps(p3, columnWeights[3]));
}

/// The four taps of one row, gathered where they would leave the window.
__m128i clampedRow(const ConstImageView& window, int x, int y) {
    const Byte* row = window.row(std::clamp(y, 0, window.height - 1));
    alignas(16) Byte bytes[16];
    for (int tap = 0; tap < kTaps; ++tap)
        std::memcpy(bytes + 4 * tap, row + std::ptrdiff_t{4} * std::clamp(x + tap, 0, window.width - 1), 4);
    return _mm_load_si128(reinterpret_cast<const __m128i*>(bytes));
}

void storeColour(__m128 sum, Byte* out) {
    const __m128i rounded = _mm_cvttps_epi32(sum);
    const __m128i words = _mm_packs_epi32(rounded, rounded);
    const auto colour = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
    std::uint32_t pixel;
    std::memcpy(&pixel, out, 4);
    pixel = (pixel & 0xff000000u) | (colour & 0x00ffffffu);
    std::memcpy(out, &pixel, 4);
}

void samplePixel(const ConstImageView& window, int x, int y, const Taps& columns, const Taps& rows, int lane,
                 Byte* out) {
    __m128 columnWeights[kTaps];
    for (int tap = 0; tap < kTaps; ++tap) columnWeights[tap] = _mm_set1_ps(columns.weights[tap][lane]);
    const bool within = x >= 0 && y >= 0 && x + kTaps <= window.width && y + kTaps <= window.height;
    const Byte* tapRow = within ? window.at(x, y) : nullptr;
    __m128 sum = _mm_set1_ps(0.5f);
    for (int tap = 0; tap < kTaps; ++tap) {
        const __m128i bytes =
            within ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(tapRow + tap * window.stride))
                   : clampedRow(window, x, y + tap);
        sum = _mm_add_ps(sum, _mm_mul_ps(rowSum(bytes, columnWeights), _mm_set1_ps(rows.weights[tap][lane])));
    }
    storeColour(sum, out);
}

void sampleBlock(const CubicSource& source, const float* x, const float* y, int count, Byte* out) {
    Taps columns, rows;
    axisTaps(x, source.imageWidth, columns);
    axisTaps(y, source.imageHeight, rows);
    for (int i = 0; i < count; ++i)
        samplePixel(source.pixels, columns.base[i] - source.left, rows.base[i] - source.top, columns, rows, i,
                    out + 4 * i);
}

}  // namespace

void sampleRunPlain(const CubicSource& source, const float* x, const float* y, int count, Byte* out) {
    int i = 0;
    for (; i + kBlock <= count; i += kBlock)
        sampleBlock(source, x + i, y + i, kBlock, out + std::ptrdiff_t{4} * i);
    if (i == count) return;
    float restX[kBlock] = {}, restY[kBlock] = {};
    std::copy(x + i, x + count, restX);
    std::copy(y + i, y + count, restY);
    sampleBlock(source, restX, restY, count - i, out + std::ptrdiff_t{4} * i);
}

}  // namespace cubic

void sampleCubicRun(const CubicSource& source, const float* x, const float* y, int count, Byte* out) {
    platform::pick(source.level, cubic::sampleRunPlain, cubic::sampleRunAvx2)(source, x, y, count, out);
}

}  // namespace zellab
