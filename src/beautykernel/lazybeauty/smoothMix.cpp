#include "beautykernel/lazybeauty/smoothMix.h"

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "platform/simdLevel.h"
#include "zellab/imageproc/parallelRows.h"

namespace zellab {

namespace {

/// Red, green, blue of the blurred colours, weight, edges, high pass, and two idle places: eight fill whole
/// vector registers.
constexpr std::size_t kSamples = 8;

using Sample = std::array<int, kSamples>;

/// One row of the planes at a height between two of their rows: the samples of every column, as floats.
class PlaneRow {
public:
    PlaneRow(const SmoothPlanes& planes, float position) {
        const int width = planes.weight.width(), last = planes.weight.height() - 1;
        const int top = std::min(static_cast<int>(position), last), bottom = std::min(top + 1, last);
        const float fraction = position - static_cast<float>(top);
        m_columns.resize(static_cast<std::size_t>(width));
        for (int x = 0; x < width; ++x) {
            const Sample upper = sampleAt(planes, x, top), lower = sampleAt(planes, x, bottom);
            for (std::size_t i = 0; i < kSamples; ++i)
                m_columns[static_cast<std::size_t>(x)][i] =
                    static_cast<float>(upper[i]) + static_cast<float>(lower[i] - upper[i]) * fraction;
        }
    }

    /// Two neighbouring columns and how far a position lies between them.
    struct Neighbours {
        const float *left, *right;
        float fraction;
    };
    Neighbours around(float position) const {
        const int last = static_cast<int>(m_columns.size()) - 1,
                  whole = std::min(static_cast<int>(position), last);
        return {m_columns[static_cast<std::size_t>(whole)].data(),
                m_columns[static_cast<std::size_t>(std::min(whole + 1, last))].data(),
                position - static_cast<float>(whole)};
    }

private:
    static Sample sampleAt(const SmoothPlanes& planes, int x, int y) {
        const std::size_t i = sampleCount(planes.weight.width(), y) + static_cast<std::size_t>(x);
        const Byte* colour = planes.blurred.data() + 4 * i;
        return {colour[0],
                colour[1],
                colour[2],
                planes.weight.data()[i],
                planes.edges.data()[i],
                planes.highPass.data()[i],
                0,
                0};
    }

    std::vector<std::array<float, kSamples>> m_columns;
};

/// The overlaid value of every blended value and high pass.
std::vector<Byte> overlaidValues(const OverlayTable& overlay, int level) {
    const float share = static_cast<float>(std::clamp(level, 0, 10)) / 10.0f;
    std::array<float, 256> shares{};
    for (std::size_t i = 1; i < shares.size(); ++i) shares[i] = shares[i - 1] + share;
    std::vector<Byte> values(256 * 256);
    for (int b = 0; b < 256; ++b)
        for (int h = 0; h < 256; ++h) {
            const float value =
                static_cast<float>(b) - shares[static_cast<std::size_t>(b)] + shares[overlay(b, h)];
            values[static_cast<std::size_t>(b * 256 + h)] = static_cast<Byte>(value);
        }
    return values;
}

void mixRow(Byte* p, int width, const PlaneRow& row, float step, const Byte* overlaid) {
    for (int x = 0; x < width; ++x, p += 4) {
        const auto [left, right, fraction] = row.around(static_cast<float>(x) * step);
        Sample sample;
        for (std::size_t i = 0; i < kSamples; ++i)
            sample[i] = static_cast<int>((right[i] - left[i]) * fraction + left[i]);
        const int weight = sample[3], edge = sample[4];
        for (std::size_t c = 0; c < 3; ++c) {
            const int smooth = ((sample[c] * weight + p[c] * (255 - weight)) >> 8) & 255;
            const int blended = ((smooth * (255 - edge) + p[c] * edge) >> 8) & 255;
            p[c] = overlaid[blended * 256 + sample[5]];
        }
    }
}

/// The same with the samples in one register and the colours in another. Products of two bytes and their
/// blends stay below 65536, so that 16-bit multiplications serve in lanes of 32.
ZEL_TARGET_AVX2 void mixRowAvx2(Byte* p, int width, const PlaneRow& row, float step, const Byte* overlaid) {
    const __m128i full = _mm_set1_epi32(255);
    for (int x = 0; x < width; ++x, p += 4) {
        const auto [leftColumn, rightColumn, fraction] = row.around(static_cast<float>(x) * step);
        const __m256 left = _mm256_loadu_ps(leftColumn), right = _mm256_loadu_ps(rightColumn);
        const __m256i samples = _mm256_cvttps_epi32(
            _mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(right, left), _mm256_set1_ps(fraction)), left));
        const __m128i colours = _mm256_castsi256_si128(samples), rest = _mm256_extracti128_si256(samples, 1);
        const __m128i weight = _mm_shuffle_epi32(colours, 0xff), edge = _mm_shuffle_epi32(rest, 0x00);
        std::int32_t pixel;
        std::memcpy(&pixel, p, sizeof pixel);
        const __m128i own = _mm_cvtepu8_epi32(_mm_cvtsi32_si128(pixel));
        const __m128i smooth =
            _mm_srli_epi32(_mm_add_epi32(_mm_mullo_epi16(colours, weight),
                                         _mm_mullo_epi16(own, _mm_sub_epi32(full, weight))),
                           8);
        const __m128i blended = _mm_srli_epi32(
            _mm_add_epi32(_mm_mullo_epi16(smooth, _mm_sub_epi32(full, edge)), _mm_mullo_epi16(own, edge)), 8);
        const __m128i index = _mm_add_epi32(_mm_slli_epi32(blended, 8), _mm_shuffle_epi32(rest, 0x55));
        p[0] = overlaid[_mm_cvtsi128_si32(index)];
        p[1] = overlaid[_mm_extract_epi32(index, 1)];
        p[2] = overlaid[_mm_extract_epi32(index, 2)];
    }
}

}  // namespace

void mixSmooth(ImageView image, const SmoothPlanes& planes, const OverlayTable& overlay, int level) {
    const std::vector<Byte> overlaid = overlaidValues(overlay, level);
    const float stepX = static_cast<float>(planes.weight.width()) / static_cast<float>(image.width);
    const float stepY = static_cast<float>(planes.weight.height()) / static_cast<float>(image.height);
    const auto mix = platform::simdLevel() == platform::SimdLevel::avx2 ? mixRowAvx2 : mixRow;
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            mix(image.row(y), image.width, PlaneRow(planes, static_cast<float>(y) * stepY), stepX,
                overlaid.data());
    });
}

}  // namespace zellab
