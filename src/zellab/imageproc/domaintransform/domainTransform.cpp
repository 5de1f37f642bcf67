#include "zellab/imageproc/domaintransform/domainTransform.h"

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <vector>

#include "frame/processorCount.h"
#include "frame/zel_log.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

constexpr int kMostDifference = 3 * 255;
/// Feedback by difference, and the same for the four bytes of a pixel, of which the last does not move.
struct Decay {
    std::array<float, kMostDifference + 1> share;
    alignas(16) std::array<std::array<float, 4>, kMostDifference + 1> pixel;
};

/// From here on 4^iterations is no float, every sigma is 0 and nothing moves.
constexpr int kMostIterations = 63;

/// Feedback of pass i of n, the widest pass being n - 1, in single precision. The exponent is a whole number,
/// so that differences fall into steps. Sigmas below 0 or beyond all measure make feedback above 1, which no
/// byte can follow, or none at all; those move nothing.
Decay decayOf(float sigmaSpace, float sigmaRange, int i, int n) {
    constexpr float kMostExponent = 1e9f;
    const float width =
        sigmaSpace * std::sqrt(3.0f) * std::ldexp(1.0f, i) / std::sqrt(std::ldexp(1.0f, 2 * n) - 1.0f);
    const float a = std::exp(-std::sqrt(2.0f) / width), ratio = sigmaSpace / sigmaRange;
    Decay decay;
    for (int d = 0; d <= kMostDifference; ++d) {
        const float exponent = static_cast<float>(d) * ratio + 1.0f;
        float w = 0.0f;
        if (std::fabs(exponent) < kMostExponent) {  // false for NaN
            const int e = static_cast<int>(exponent);
            w = e == 2 ? a * a : static_cast<float>(std::pow(static_cast<double>(a), e));
        }
        if (!(w >= 0.0f && w <= 1.0f)) w = 0.0f;
        decay.share[static_cast<std::size_t>(d)] = w;
        decay.pixel[static_cast<std::size_t>(d)] = {w, w, w, 0.0f};
    }
    return decay;
}

/// Bytes that are filtered side by side: a cache line.
constexpr std::size_t kLanes = 64;

/// Lines that lie side by side: sample i of lane j at data[i * stride + j], its difference to sample i - 1 at
/// difference[i * differenceStride + j / channels].
struct Lines {
    Byte* data;
    std::ptrdiff_t stride;
    const std::uint16_t* difference;
    std::ptrdiff_t differenceStride;
    std::size_t lanes, length;
};

/// Moves the samples from `begin` on at `to` towards those at `from`. Bytes wrap, as sums of bytes do.
template <int kChannels>
[[gnu::always_inline]] inline void follow(const Byte* from, Byte* to, const std::uint16_t* difference,
                                          std::size_t begin, std::size_t lanes, const Decay& decay) {
    constexpr float kRound = kChannels == 4 ? 0.5f : 0.0f;
    float feedback[kLanes];
    if constexpr (kChannels == 4)
        for (std::size_t p = begin / 4; p < lanes / 4; ++p)
            std::copy_n(decay.pixel[difference[p]].data(), 4, feedback + 4 * p);
    else
        for (std::size_t p = begin; p < lanes; ++p) feedback[p] = decay.share[difference[p]];
    for (std::size_t j = begin; j < lanes; ++j) {
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): lanes are whole pixels, all filled
        const float move = static_cast<float>(from[j] - to[j]) * feedback[j] + kRound;
        to[j] = static_cast<Byte>(to[j] + static_cast<int>(move));
    }
}

/// Two pixels' feedback.
ZEL_TARGET_AVX2 inline __m256 loadFeedback(const Decay& decay, const std::uint16_t* difference) {
    const __m128 low = _mm_load_ps(decay.pixel[difference[0]].data());
    return _mm256_insertf128_ps(_mm256_castps128_ps256(low), _mm_load_ps(decay.pixel[difference[1]].data()),
                                1);
}

/// trunc(words * feedback + 0.5) of eight words.
ZEL_TARGET_AVX2 inline __m256i moveOf(__m128i words, __m256 feedback) {
    const __m256 differences = _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(words));
    return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(differences, feedback), _mm256_set1_ps(0.5f)));
}

/// As `follow`, four pixels at a time. Returns the first byte left to do.
ZEL_TARGET_AVX2 inline std::size_t followPixels(const Byte* from, Byte* to, const std::uint16_t* difference,
                                                std::size_t lanes, const Decay& decay) {
    std::size_t j = 0;
    for (; j + 16 <= lanes; j += 16, difference += 4) {
        const __m256i own = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(to + j)));
        const __m256i other =
            _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + j)));
        const __m256i apart = _mm256_sub_epi16(other, own);
        const __m256i low = moveOf(_mm256_castsi256_si128(apart), loadFeedback(decay, difference));
        const __m256i high = moveOf(_mm256_extracti128_si256(apart, 1), loadFeedback(decay, difference + 2));
        // Packing works in halves; the permutation puts the words back in order.
        const __m256i move = _mm256_permute4x64_epi64(_mm256_packs_epi32(low, high), 0xd8);
        const __m256i sum = _mm256_and_si256(_mm256_add_epi16(own, move), _mm256_set1_epi16(255));
        const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + j), bytes);
    }
    return j;
}

/// Calls step(to, from, difference) forth and back along the lines.
template <typename Step>
[[gnu::always_inline]] inline void walkLines(const Lines& lines, const Step& step) {
    for (std::size_t i = 1; i < lines.length; ++i) {
        const auto at = static_cast<std::ptrdiff_t>(i);
        Byte* to = lines.data + at * lines.stride;
        step(to - lines.stride, to, lines.difference + at * lines.differenceStride);
    }
    for (std::size_t i = lines.length - 1; i-- > 0;) {
        const auto at = static_cast<std::ptrdiff_t>(i);
        Byte* to = lines.data + at * lines.stride;
        step(to + lines.stride, to, lines.difference + (at + 1) * lines.differenceStride);
    }
}

template <int kChannels>
void filterLinesPlain(const Lines& lines, const Decay& decay) {
    walkLines(lines, [&](const Byte* from, Byte* to, const std::uint16_t* difference) {
        follow<kChannels>(from, to, difference, 0, lines.lanes, decay);
    });
}

template <int kChannels>
ZEL_TARGET_AVX2 void filterLinesAvx2(const Lines& lines, const Decay& decay) {
    walkLines(lines, [&](const Byte* from, Byte* to, const std::uint16_t* difference) ZEL_TARGET_AVX2 {
        std::size_t done = 0;
        if constexpr (kChannels == 4) done = followPixels(from, to, difference, lines.lanes, decay);
        follow<kChannels>(from, to, difference, done, lines.lanes, decay);
    });
}

template <int kChannels>
std::uint16_t differenceOf(const Byte* a, const Byte* b) {
    if constexpr (kChannels == 1) return static_cast<std::uint16_t>(3 * std::abs(*a - *b));
    return static_cast<std::uint16_t>(std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]));
}

/// One call on a picture or a plane.
template <typename View>
class Transform {
public:
    Transform(const View& view, bool threaded)
        : m_view(view),
          m_workers(threaded ? ProcessorCount() : 1),
          m_filter(
              platform::pick(platform::simdLevel(), filterLinesPlain<kChannels>, filterLinesAvx2<kChannels>)),
          m_left(view.width, view.height),
          m_above(view.width, view.height) {
        parallelRows(view.height, m_workers, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) fillDifferences(y);
        });
    }

    void filter(const Decay& decay) {
        runBlocks(m_view.height, [&](int block) { filterRows(block, decay); });
        runBlocks(m_view.width, [&](int block) { filterColumns(block, decay); });
    }

private:
    /// Bytes of a pixel.
    static constexpr int kChannels = std::is_same_v<View, ImageView> ? ImageView::kChannels : 1;
    /// Lines of a block.
    static constexpr std::size_t kPixels = kLanes / kChannels;

    template <typename Filter>
    void runBlocks(int lines, const Filter& filterBlock) const {
        const int missing = runTasks((lines - 1) / static_cast<int>(kPixels) + 1, m_workers, filterBlock);
        for (int thread = 0; thread < missing; ++thread) ZEL_LOG_ERROR("error creating thread.");
    }

    void fillDifferences(int y) {
        const Byte* row = m_view.row(y);
        std::uint16_t *left = m_left.row(y), *above = m_above.row(y);
        const std::ptrdiff_t width = m_view.width;
        for (std::ptrdiff_t x = 1; x < width; ++x)
            left[x] = differenceOf<kChannels>(row + x * kChannels, row + (x - 1) * kChannels);
        for (std::ptrdiff_t x = 0; y > 0 && x < width; ++x)
            above[x] = differenceOf<kChannels>(row + x * kChannels, row + x * kChannels - m_view.stride);
    }

    void filterColumns(int block, const Decay& decay) const {
        const std::ptrdiff_t first = std::ptrdiff_t{block} * kPixels;
        const auto count = std::min<std::size_t>(kPixels, static_cast<std::size_t>(m_view.width - first));
        m_filter({m_view.data + first * kChannels, m_view.stride, m_above.data() + first, m_view.width,
                  count * kChannels, static_cast<std::size_t>(m_view.height)},
                 decay);
    }

    /// Rows turn into columns of a scratch, are filtered there and turned back.
    void filterRows(int block, const Decay& decay) const {
        const auto width = static_cast<std::size_t>(m_view.width);
        const std::ptrdiff_t first = std::ptrdiff_t{block} * kPixels;
        const auto count = std::min<std::size_t>(kPixels, static_cast<std::size_t>(m_view.height - first));
        std::vector<Byte> scratch(width * kLanes);
        std::vector<std::uint16_t> difference(width * kPixels);
        const auto move = [&](bool in) {
            for (std::size_t x = 0; x < width; ++x)
                for (std::size_t j = 0; j < count; ++j) {
                    Byte* pixel = m_view.data + (first + static_cast<std::ptrdiff_t>(j)) * m_view.stride +
                                  x * kChannels;
                    Byte* lane = scratch.data() + x * kLanes + j * kChannels;
                    std::memcpy(in ? lane : pixel, in ? pixel : lane, kChannels);
                }
        };
        move(true);
        for (std::size_t x = 0; x < width; ++x)
            for (std::size_t j = 0; j < count; ++j)
                difference[x * kPixels + j] =
                    m_left.data()[(static_cast<std::size_t>(first) + j) * width + x];
        m_filter({scratch.data(), kLanes, difference.data(), kPixels, count * kChannels, width}, decay);
        move(false);
    }

    View m_view;
    int m_workers;
    void (*m_filter)(const Lines&, const Decay&);
    Plane<std::uint16_t> m_left, m_above;  // differences to the left and the upper neighbour
};

template <typename View>
void run(const View& view, float sigmaSpace, float sigmaRange, int iterations, bool threaded) {
    if (!view.valid() || iterations <= 0 || iterations > kMostIterations) return;
    Transform<View> transform(view, threaded);
    for (int i = iterations - 1; i >= 0; --i)
        transform.filter(decayOf(sigmaSpace, sigmaRange, i, iterations));
}

}  // namespace

void DomainTransformRGBA(ImageView image, float sigmaSpace, float sigmaRange, int iterations, bool threaded) {
    run(image, sigmaSpace, sigmaRange, iterations, threaded);
}

void DomainTransformPlane(PlaneView<Byte> plane, float sigmaSpace, float sigmaRange, int iterations,
                          bool threaded) {
    run(plane, sigmaSpace, sigmaRange, iterations, threaded);
}

}  // namespace zellab
