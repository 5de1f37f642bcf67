#include "zellab/imageproc/edgeaware/surfaceBlur.h"

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/edgeaware/surfaceBlurDirect.h"
#include "zellab/imageproc/edgeaware/surfaceBlurParts.h"

namespace zellab {

namespace {

using surface::Disc;
using surface::Weights;

constexpr int kMostRadius = 100, kMostThreshold = 100;

/// Of three channels: the sums of the weights of counted values, and of these times their distances.
struct Sums {
    std::int32_t weight[3], moment[3];
};

/// How the sums over a stretch of each channel's counts are taken; both forms give the same numbers.
struct PlainSums {
    static Sums of(const std::array<const std::int16_t*, 3>& counts, const Weights& weights) {
        Sums sums;
        for (std::size_t c = 0; c < 3; ++c) {
            __m128i weight = _mm_setzero_si128(), moment = weight;
            for (std::size_t i = 0; i < weights.weight.size(); i += 8) {
                const __m128i eight = load(counts[c] + i);
                weight = _mm_add_epi32(weight, _mm_madd_epi16(eight, load(weights.weight.data() + i)));
                moment = _mm_add_epi32(moment, _mm_madd_epi16(eight, load(weights.moment.data() + i)));
            }
            sums.weight[c] = total(weight), sums.moment[c] = total(moment);
        }
        return sums;
    }

private:
    static __m128i load(const std::int16_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static int total(__m128i four) {
        const __m128i two = _mm_add_epi32(four, _mm_srli_si128(four, 8));
        return _mm_cvtsi128_si32(_mm_add_epi32(two, _mm_srli_si128(two, 4)));
    }
};

struct Avx2Sums {
    ZEL_TARGET_AVX2 static Sums of(const std::array<const std::int16_t*, 3>& counts, const Weights& weights) {
        __m256i weight[3], moment[3];
        for (std::size_t c = 0; c < 3; ++c) weight[c] = moment[c] = _mm256_setzero_si256();
        for (std::size_t i = 0; i < weights.weight.size(); i += Weights::kVector) {
            const __m256i w = load(weights.weight.data() + i), m = load(weights.moment.data() + i);
            for (std::size_t c = 0; c < 3; ++c) {
                const __m256i sixteen = load(counts[c] + i);
                weight[c] = _mm256_add_epi32(weight[c], _mm256_madd_epi16(sixteen, w));
                moment[c] = _mm256_add_epi32(moment[c], _mm256_madd_epi16(sixteen, m));
            }
        }
        const __m128i first =
            totals(_mm256_hadd_epi32(weight[0], weight[1]), _mm256_hadd_epi32(weight[2], moment[0]));
        const __m256i last = _mm256_hadd_epi32(moment[1], moment[2]);
        Sums sums;
        std::int32_t rest[4];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(rest), totals(last, last));
        sums.weight[0] = _mm_cvtsi128_si32(first), sums.weight[1] = _mm_extract_epi32(first, 1);
        sums.weight[2] = _mm_extract_epi32(first, 2), sums.moment[0] = _mm_extract_epi32(first, 3);
        sums.moment[1] = rest[0], sums.moment[2] = rest[1];
        return sums;
    }

private:
    ZEL_TARGET_AVX2 static __m256i load(const std::int16_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    /// Four totals from two vectors whose neighbours were added once.
    ZEL_TARGET_AVX2 static __m128i totals(__m256i a, __m256i b) {
        const __m256i halves = _mm256_hadd_epi32(a, b);
        return _mm_add_epi32(_mm256_castsi256_si128(halves), _mm256_extracti128_si256(halves, 1));
    }
};

/// Counts of the three channels in a disc. A count is below 32,000 at the largest radius. Both ends have room
/// for the weights' reach beyond the levels.
class Histograms {
public:
    void add(const Byte* pixel) { change(pixel, 1); }
    void remove(const Byte* pixel) { change(pixel, -1); }

    /// Writes the weighted means around the values of `centre`, or these themselves where nothing counts.
    template <typename Kernel>
    [[gnu::always_inline]] void means(const Byte* centre, const Weights& weights, Byte* out) const {
        std::array<const std::int16_t*, 3> stretches;
        for (std::size_t c = 0; c < 3; ++c)
            stretches[c] = m_counts[c].data() + kRoom + centre[c] - weights.reach;
        Sums sums = Kernel::of(stretches, weights);
        for (std::size_t c = 0; c < 3; ++c) {
            // Value 0 never counts: the padding must not darken the rim. Taken back here, since a store among
            // the counts would hold up the next loads.
            if (centre[c] <= weights.reach) {
                const auto zero = static_cast<std::size_t>(weights.reach - centre[c]);
                sums.weight[c] -= m_counts[c][kRoom] * weights.weight[zero];
                sums.moment[c] -= m_counts[c][kRoom] * weights.moment[zero];
            }
            // Below 2^32 at the largest radius, all of it white.
            const auto sum = static_cast<std::uint32_t>(sums.weight[c]);
            const std::uint32_t weighted = centre[c] * sum + static_cast<std::uint32_t>(sums.moment[c]);
            out[c] = sum == 0 ? centre[c] : static_cast<Byte>((weighted + sum / 2) / sum);
        }
    }

private:
    static constexpr std::size_t kRoom = surface::kLevels + 2 * Weights::kVector;

    void change(const Byte* pixel, int by) {
        for (std::size_t c = 0; c < 3; ++c) {
            std::int16_t& count = m_counts[c][kRoom + pixel[c]];
            count = static_cast<std::int16_t>(count + by);
        }
    }

    std::array<std::array<std::int16_t, surface::kLevels + 2 * kRoom>, 3> m_counts{};
};

class Blur {
public:
    /// @param padded  the picture as it was, in a rim of zeros as wide as the radius
    Blur(const ImageView& image, ConstImageView padded, int radius, int threshold, PlaneView<const Byte> mask)
        : m_image(image), m_mask(mask), m_disc(radius), m_weights(threshold), m_before{padded, radius} {}

    void run() {
        const auto level = platform::simdLevel();
        if (level == platform::SimdLevel::avx2 && surface::fitsDirect(m_disc, m_weights)) {
            const surface::Job job{m_image, m_before, m_mask, m_disc, m_weights, everywhere()};
            parallelRows(m_image.height,
                         [&](int begin, int end) { surface::blurDirectAvx2(job, begin, end); });
            return;
        }
        const auto sweepBand = platform::pick(level, &Blur::sweepPlain, &Blur::sweepAvx2);
        parallelRows(m_image.height, [&](int begin, int end) { (this->*sweepBand)(begin, end); });
    }

private:
    /// The very first disc of a picture is a little wider than the one that slides (0.4 of a pixel); what lies
    /// between the two is never removed and counts everywhere.
    std::vector<const Byte*> everywhere() {
        std::vector<const Byte*> pixels;
        for (int dy = -m_disc.radius; dy <= m_disc.radius; ++dy) {
            const int wider = m_disc.extent(std::abs(dy), 0.4f);
            for (int dx = m_disc.half[static_cast<std::size_t>(std::abs(dy))] + 1; dx <= wider; ++dx)
                pixels.insert(pixels.end(), {m_before.at(-dx, dy), m_before.at(dx, dy)});
        }
        return pixels;
    }

    /// The disc around the first pixel of a band.
    Histograms start(int y) {
        Histograms histograms;
        for (int dy = -m_disc.radius; dy <= m_disc.radius; ++dy) {
            const int half = m_disc.half[static_cast<std::size_t>(std::abs(dy))];
            for (int dx = -half; dx <= half; ++dx) histograms.add(m_before.at(dx, y + dy));
        }
        for (const Byte* pixel : everywhere()) histograms.add(pixel);
        return histograms;
    }

    /// Rows [begin, end), right along one and left along the next, so that the disc moves by one pixel only.
    template <typename Kernel>
    [[gnu::always_inline]] void sweep(int begin, int end) {
        const std::ptrdiff_t stride = m_before.pixels.stride;
        const auto right = edges(4, stride), left = edges(-4, stride), down = edges(stride, 4);
        Histograms histograms = start(begin);
        const auto move = [&histograms](const Byte* centre, const auto& pairs) {
            for (const auto& [leaving, entering] : pairs) {
                histograms.remove(centre + leaving);
                histograms.add(centre + entering);
            }
        };
        int x = 0;
        for (int y = begin; y < end; ++y) {
            const bool rightwards = (y - begin) % 2 == 0;
            for (int i = 0;; ++i) {
                blurPixel<Kernel>(x, y, histograms);
                if (i + 1 == m_image.width) break;
                move(m_before.at(x, y), rightwards ? right : left);
                x += rightwards ? 1 : -1;
            }
            if (y + 1 < end) move(m_before.at(x, y), down);
        }
    }

    void sweepPlain(int begin, int end) { sweep<PlainSums>(begin, end); }
    ZEL_TARGET_AVX2 void sweepAvx2(int begin, int end) { sweep<Avx2Sums>(begin, end); }

    /// What leaves and enters the disc when it moves by `step` bytes, as pairs of offsets from its centre;
    /// `across` is the step of the other axis.
    std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> edges(std::ptrdiff_t step,
                                                                 std::ptrdiff_t across) const {
        std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> pairs;
        for (int d = -m_disc.radius; d <= m_disc.radius; ++d) {
            const std::ptrdiff_t half = m_disc.half[static_cast<std::size_t>(std::abs(d))];
            pairs.emplace_back(d * across - half * step, d * across + (half + 1) * step);
        }
        return pairs;
    }

    template <typename Kernel>
    [[gnu::always_inline]] void blurPixel(int x, int y, const Histograms& histograms) {
        if (m_mask.valid() && m_mask.row(y)[x] == 0) return;
        histograms.means<Kernel>(m_before.at(x, y), m_weights, m_image.at(x, y));
    }

    ImageView m_image;
    PlaneView<const Byte> m_mask;
    Disc m_disc;
    Weights m_weights;
    surface::Padded m_before;
};

}  // namespace

bool SurfaceBlurFilter::Run(ImageView image, int radius, int threshold, PlaneView<const Byte> mask) {
    if (!image.valid() || radius < 1) return false;
    radius = std::min(radius, kMostRadius);
    m_padded = RgbaImage(image.width + 2 * radius, image.height + 2 * radius);
    const ImageView inner = m_padded.view().crop(radius, radius, image.width, image.height);
    copyPixels(image, inner);
    m_before = inner;
    Blur(image, m_padded.view(), radius, std::clamp(threshold, 1, kMostThreshold), mask).run();
    return true;
}

}  // namespace zellab
