#include "beautykernel/lazybeauty/smoothMix.h"

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

/// What is sampled at each pixel, in this order.
enum Sampled : std::size_t { kRed, kGreen, kBlue, kWeight, kEdge, kHighPass, kSampled };

/// Samples that vectors may read past the last column; they repeat it.
constexpr std::size_t kSlack = 16;

/// The planes, the colours split.
struct SplitPlanes {
    int width, height;
    Plane<Byte> colours[3];
    std::array<PlaneView<const Byte>, kSampled> sampled;

    explicit SplitPlanes(const SmoothPlanes& planes)
        : width(planes.weight.width()), height(planes.weight.height()) {
        for (std::size_t c = 0; c < 3; ++c) {
            colours[c] = Plane<Byte>(width, height);
            for (std::size_t i = 0; i < colours[c].size(); ++i)
                colours[c].data()[i] = planes.blurred.data()[4 * i + c];
            sampled[c] = std::as_const(colours[c]).view();
        }
        sampled[kWeight] = planes.weight.view();
        sampled[kEdge] = planes.edges.view();
        sampled[kHighPass] = planes.highPass.view();
    }
};

/// One row of the planes at a height between two of their rows.
class PlaneRow {
public:
    explicit PlaneRow(const SplitPlanes& planes)
        : m_planes(planes),
          m_stride(static_cast<std::size_t>(planes.width) + kSlack),
          m_samples(m_stride * kSampled) {}

    void moveTo(float position) {
        const int last = m_planes.height - 1;
        const int top = std::min(static_cast<int>(position), last), bottom = std::min(top + 1, last);
        const float fraction = position - static_cast<float>(top);
        const auto width = static_cast<std::size_t>(m_planes.width);
        for (std::size_t s = 0; s < kSampled; ++s) {
            const Byte *upper = m_planes.sampled[s].row(top), *lower = m_planes.sampled[s].row(bottom);
            float* out = m_samples.data() + m_stride * s;
            for (std::size_t x = 0; x < width; ++x)
                out[x] = static_cast<float>(upper[x]) + static_cast<float>(lower[x] - upper[x]) * fraction;
            std::fill_n(out + width, kSlack, out[width - 1]);
        }
    }

    const float* samples(std::size_t which) const { return m_samples.data() + m_stride * which; }

private:
    const SplitPlanes& m_planes;
    std::size_t m_stride;
    std::vector<float> m_samples;
};

/// Where the pixels of a row lie between two columns of the planes; the right one follows the left.
struct Columns {
    std::vector<int> left;
    std::vector<float> fraction;
    bool enlarges;  // a step is one sample at most

    Columns(int width, int planeWidth) {
        const float step = static_cast<float>(planeWidth) / static_cast<float>(width);
        enlarges = step <= 1.0f;
        for (int x = 0; x < width; ++x) {
            const float position = static_cast<float>(x) * step;
            left.push_back(std::min(static_cast<int>(position), planeWidth - 1));
            fraction.push_back(position - static_cast<float>(left.back()));
        }
    }
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

void mixPixels(Byte* pixels, std::size_t begin, const Columns& columns, const PlaneRow& row,
               const Byte* overlaid) {
    for (std::size_t x = begin; x < columns.left.size(); ++x) {
        Byte* p = pixels + 4 * x;
        int sample[kSampled];
        for (std::size_t s = 0; s < kSampled; ++s) {
            const float* around = row.samples(s) + columns.left[x];
            sample[s] = static_cast<int>((around[1] - around[0]) * columns.fraction[x] + around[0]);
        }
        const int weight = sample[kWeight], edge = sample[kEdge];
        for (std::size_t c = 0; c < 3; ++c) {
            const int smooth = ((sample[c] * weight + p[c] * (255 - weight)) >> 8) & 255;
            const int blended = ((smooth * (255 - edge) + p[c] * edge) >> 8) & 255;
            p[c] = overlaid[blended * 256 + sample[kHighPass]];
        }
    }
}

/// Samples of eight neighbouring pixels of an enlarged row: they lie within eight of the line from `base`,
/// and their right neighbours within the eight from the next.
ZEL_TARGET_AVX2 inline __m256i sampleEight(const PlaneRow& row, std::size_t which, std::ptrdiff_t base,
                                           __m256i within, __m256 fraction) {
    const float* line = row.samples(which) + base;
    const __m256 left = _mm256_permutevar8x32_ps(_mm256_loadu_ps(line), within);
    const __m256 right = _mm256_permutevar8x32_ps(_mm256_loadu_ps(line + 1), within);
    return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(right, left), fraction), left));
}

/// (a * share + b * (255 - share)) >> 8 of bytes in lanes of 32 bits. The products and their sums stay below
/// 65536, so that 16-bit multiplications serve.
ZEL_TARGET_AVX2 inline __m256i blendEight(__m256i a, __m256i b, __m256i share, __m256i rest) {
    return _mm256_srli_epi32(_mm256_add_epi32(_mm256_mullo_epi16(a, share), _mm256_mullo_epi16(b, rest)), 8);
}

/// The same, eight pixels at once. Returns the first that is left to do.
ZEL_TARGET_AVX2 std::size_t mixEights(Byte* pixels, const Columns& columns, const PlaneRow& row,
                                      const Byte* overlaid) {
    const __m256i full = _mm256_set1_epi32(255);
    std::size_t x = 0;
    for (; x + 8 <= columns.left.size(); x += 8) {
        const std::ptrdiff_t base = columns.left[x];
        const __m256i within =
            _mm256_sub_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(columns.left.data() + x)),
                             _mm256_set1_epi32(columns.left[x]));
        const __m256 fraction = _mm256_loadu_ps(columns.fraction.data() + x);
        const auto sample = [&](std::size_t which)
                                ZEL_TARGET_AVX2 { return sampleEight(row, which, base, within, fraction); };
        const __m256i weight = sample(kWeight), edge = sample(kEdge), highPass = sample(kHighPass);
        const __m256i unweighted = _mm256_sub_epi32(full, weight), inside = _mm256_sub_epi32(full, edge);
        Byte* p = pixels + 4 * x;
        const __m256i own = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        alignas(32) std::int32_t index[3][8];
        for (std::size_t c = 0; c < 3; ++c) {
            const __m256i value = _mm256_and_si256(_mm256_srli_epi32(own, static_cast<int>(8 * c)), full);
            const __m256i smooth = blendEight(sample(c), value, weight, unweighted);
            const __m256i blended = blendEight(smooth, value, inside, edge);
            _mm256_store_si256(reinterpret_cast<__m256i*>(index[c]),
                               _mm256_or_si256(_mm256_slli_epi32(blended, 8), highPass));
        }
        for (std::size_t i = 0; i < 8; ++i, p += 4)
            for (std::size_t c = 0; c < 3; ++c) p[c] = overlaid[index[c][i]];
    }
    return x;
}

}  // namespace

void mixSmooth(ImageView image, const SmoothPlanes& planes, const OverlayTable& overlay, int level) {
    const std::vector<Byte> overlaid = overlaidValues(overlay, level);
    const SplitPlanes split(planes);
    const Columns columns(image.width, split.width);
    const float stepY = static_cast<float>(split.height) / static_cast<float>(image.height);
    const bool wide = columns.enlarges && platform::simdLevel() == platform::SimdLevel::avx2;
    parallelRows(image.height, [&](int begin, int end) {
        PlaneRow row(split);
        for (int y = begin; y < end; ++y) {
            row.moveTo(static_cast<float>(y) * stepY);
            const std::size_t done = wide ? mixEights(image.row(y), columns, row, overlaid.data()) : 0;
            mixPixels(image.row(y), done, columns, row, overlaid.data());
        }
    });
}

}  // namespace zellab
