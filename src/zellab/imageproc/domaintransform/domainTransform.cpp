#include "zellab/imageproc/domaintransform/domainTransform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/imageView.h"
#include "zellab/imageproc/parallelRows.h"

namespace zellab {

namespace {

constexpr int kMostDifference = 3 * 255;
/// Feedback by difference.
using Decay = std::array<float, kMostDifference + 1>;

/// From here on 4^iterations is no float, every sigma is 0 and nothing moves.
constexpr int kMostIterations = 63;

/// Feedback of pass i of n, the widest pass being n - 1, in single precision. The exponent is a whole number,
/// so that differences fall into steps. Sigmas of opposite sign or beyond all measure make powers that no
/// byte can follow; those move nothing.
Decay decayOf(float sigmaSpace, float sigmaRange, int i, int n) {
    constexpr float kMostFeedback = 1e6f, kMostExponent = 1e9f;
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
        decay[static_cast<std::size_t>(d)] = std::fabs(w) < kMostFeedback ? w : 0.0f;
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

/// Moves the samples at `to` towards those at `from`. Bytes wrap, as sums of bytes do.
template <int kChannels>
[[gnu::always_inline]] inline void follow(const Byte* from, Byte* to, const std::uint16_t* difference,
                                          std::size_t lanes, const Decay& decay) {
    constexpr float kRound = kChannels == 4 ? 0.5f : 0.0f;
    constexpr std::size_t kStep = kChannels;
    float feedback[kLanes];
    for (std::size_t p = 0; p < lanes / kStep; ++p) {
        const float w = decay[difference[p]];
        for (std::size_t c = 0; c < kStep; ++c) feedback[p * kStep + c] = c < 3 ? w : 0.0f;
    }
    for (std::size_t j = 0; j < lanes; ++j) {
        const float move = static_cast<float>(from[j] - to[j]) * feedback[j] + kRound;
        to[j] = static_cast<Byte>(to[j] + static_cast<int>(move));
    }
}

/// Forth and back along the lines.
template <int kChannels>
[[gnu::always_inline]] inline void filterLines(const Lines& lines, const Decay& decay) {
    for (std::size_t i = 1; i < lines.length; ++i) {
        const auto at = static_cast<std::ptrdiff_t>(i);
        Byte* to = lines.data + at * lines.stride;
        follow<kChannels>(to - lines.stride, to, lines.difference + at * lines.differenceStride, lines.lanes,
                          decay);
    }
    for (std::size_t i = lines.length - 1; i-- > 0;) {
        const auto at = static_cast<std::ptrdiff_t>(i);
        Byte* to = lines.data + at * lines.stride;
        follow<kChannels>(to + lines.stride, to, lines.difference + (at + 1) * lines.differenceStride,
                          lines.lanes, decay);
    }
}

template <int kChannels>
void filterLinesBaseline(const Lines& lines, const Decay& decay) {
    filterLines<kChannels>(lines, decay);
}
template <int kChannels>
ZEL_TARGET_AVX2 void filterLinesAvx2(const Lines& lines, const Decay& decay) {
    filterLines<kChannels>(lines, decay);
}

template <int kChannels>
std::uint16_t differenceOf(const Byte* a, const Byte* b) {
    if constexpr (kChannels == 1) return static_cast<std::uint16_t>(3 * std::abs(*a - *b));
    return static_cast<std::uint16_t>(std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]));
}

/// One call on a picture of kChannels tight bytes a pixel.
template <int kChannels>
class Transform {
public:
    Transform(Byte* data, int width, int height, std::ptrdiff_t stride, bool threaded)
        : m_data(data),
          m_stride(stride),
          m_width(width),
          m_height(height),
          m_workers(threaded ? ProcessorCount() : 1),
          m_filter(platform::simdLevel() == platform::SimdLevel::avx2 ? filterLinesAvx2<kChannels>
                                                                      : filterLinesBaseline<kChannels>),
          m_left(sampleCount(width, height)),
          m_above(sampleCount(width, height)) {
        parallelRows(height, m_workers, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) fillDifferences(y);
        });
    }

    void filter(const Decay& decay) {
        runTasks((m_height - 1) / static_cast<int>(kPixels) + 1, m_workers,
                 [&](int block) { filterRows(block, decay); });
        runTasks((m_width - 1) / static_cast<int>(kPixels) + 1, m_workers,
                 [&](int block) { filterColumns(block, decay); });
    }

private:
    /// Lines of a block.
    static constexpr std::size_t kPixels = kLanes / kChannels;

    void fillDifferences(int y) {
        const Byte* row = m_data + y * m_stride;
        std::uint16_t* left = m_left.data() + std::ptrdiff_t{y} * m_width;
        std::uint16_t* above = m_above.data() + std::ptrdiff_t{y} * m_width;
        for (std::ptrdiff_t x = 1; x < m_width; ++x)
            left[x] = differenceOf<kChannels>(row + x * kChannels, row + (x - 1) * kChannels);
        for (std::ptrdiff_t x = 0; y > 0 && x < m_width; ++x)
            above[x] = differenceOf<kChannels>(row + x * kChannels, row + x * kChannels - m_stride);
    }

    void filterColumns(int block, const Decay& decay) const {
        const std::ptrdiff_t first = std::ptrdiff_t{block} * kPixels;
        const auto count = std::min<std::size_t>(kPixels, static_cast<std::size_t>(m_width - first));
        m_filter({m_data + first * kChannels, m_stride, m_above.data() + first, m_width, count * kChannels,
                  static_cast<std::size_t>(m_height)},
                 decay);
    }

    /// Rows turn into columns of a scratch, are filtered there and turned back.
    void filterRows(int block, const Decay& decay) const {
        const auto width = static_cast<std::size_t>(m_width);
        const std::ptrdiff_t first = std::ptrdiff_t{block} * kPixels;
        const auto count = std::min<std::size_t>(kPixels, static_cast<std::size_t>(m_height - first));
        std::vector<Byte> scratch(width * kLanes);
        std::vector<std::uint16_t> difference(width * kPixels);
        const auto move = [&](bool in) {
            for (std::size_t x = 0; x < width; ++x)
                for (std::size_t j = 0; j < count; ++j) {
                    Byte* pixel =
                        m_data + (first + static_cast<std::ptrdiff_t>(j)) * m_stride + x * kChannels;
                    Byte* lane = scratch.data() + x * kLanes + j * kChannels;
                    std::memcpy(in ? lane : pixel, in ? pixel : lane, kChannels);
                }
        };
        move(true);
        for (std::size_t x = 0; x < width; ++x)
            for (std::size_t j = 0; j < count; ++j)
                difference[x * kPixels + j] = m_left[(static_cast<std::size_t>(first) + j) * width + x];
        m_filter({scratch.data(), kLanes, difference.data(), kPixels, count * kChannels, width}, decay);
        move(false);
    }

    Byte* m_data;
    std::ptrdiff_t m_stride;
    int m_width, m_height, m_workers;
    void (*m_filter)(const Lines&, const Decay&);
    std::vector<std::uint16_t> m_left, m_above;  // differences to the left and the upper neighbour
};

template <int kChannels>
void run(Byte* data, int width, int height, std::ptrdiff_t stride, float sigmaSpace, float sigmaRange,
         int iterations, bool threaded) {
    Transform<kChannels> transform(data, width, height, stride, threaded);
    for (int i = iterations - 1; i >= 0; --i)
        transform.filter(decayOf(sigmaSpace, sigmaRange, i, iterations));
}

}  // namespace

void DomainTransformRGBA(unsigned char* image, int width, int height, int rowBytes, float sigmaSpace,
                         float sigmaRange, int iterations, bool threaded) {
    if (!image || width <= 0 || height <= 0 || iterations <= 0 || iterations > kMostIterations) return;
    if (rowBytes / 4 < width) return;
    run<4>(image, width, height, rowBytes, sigmaSpace, sigmaRange, iterations, threaded);
}

void DomainTransformPlane(unsigned char* image, int width, int height, int rowBytes, float sigmaSpace,
                          float sigmaRange, int iterations, bool threaded) {
    if (!image || width <= 0 || height <= 0 || iterations <= 0 || iterations > kMostIterations) return;
    if (rowBytes < width) return;
    const std::ptrdiff_t step = rowBytes / width;
    if (step == 1) {
        run<1>(image, width, height, rowBytes, sigmaSpace, sigmaRange, iterations, threaded);
        return;
    }
    Plane<Byte> plane(width, height);
    const auto sample = [&](int x, int y) -> Byte& { return image[y * std::ptrdiff_t{rowBytes} + x * step]; };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) plane.view().row(y)[x] = sample(x, y);
    run<1>(plane.data(), width, height, width, sigmaSpace, sigmaRange, iterations, threaded);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) sample(x, y) = plane.view().row(y)[x];
}

}  // namespace zellab
