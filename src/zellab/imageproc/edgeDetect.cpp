#include "zellab/imageproc/edgeDetect.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <vector>

#include "platform/simdLevel.h"
#include "zellab/imageproc/imageView.h"
#include "zellab/imageproc/parallelRows.h"

namespace zellab {

namespace {

/// Result of a found edge. Inner magnitudes are at most 179 (both components within 127), so that a magnitude
/// is never taken for it and the edge plane can hold the candidates' magnitudes on the way.
constexpr Byte kEdge = 255;
constexpr int kMostMagnitude = 254;

/// Automatic thresholds: `high` is passed by a tenth of the thinned pixels, `low` is a share of it.
constexpr float kHighQuantile = 0.9f, kLowShare = 0.35f;
constexpr int kSmallestAutoHigh = 16;

/// Gradient and magnitude of one row.
struct GradientRow {
    explicit GradientRow(std::size_t width) : gx(width), gy(width), magnitude(width) {}
    std::vector<std::int16_t> gx, gy, magnitude;
};

/// trunc(sqrt(gx * gx + gy * gy)). By hand because the compiler keeps the library call's error flag, and
/// with it one root at a time.
inline void fillMagnitude(const std::int16_t* gx, const std::int16_t* gy, std::int16_t* out,
                          std::size_t count) {
    const auto roots = [](__m128i pairs) {
        return _mm_cvttps_epi32(_mm_sqrt_ps(_mm_cvtepi32_ps(_mm_madd_epi16(pairs, pairs))));
    };
    std::size_t x = 0;
    for (; x + 8 <= count; x += 8) {
        const __m128i dx = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gx + x));
        const __m128i dy = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gy + x));
        const __m128i low = roots(_mm_unpacklo_epi16(dx, dy)), high = roots(_mm_unpackhi_epi16(dx, dy));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm_packs_epi32(low, high));
    }
    for (; x < count; ++x)
        out[x] = static_cast<std::int16_t>(std::sqrt(static_cast<float>(gx[x] * gx[x] + gy[x] * gy[x])));
}

/// Fills `out` for row y: central differences halved toward zero, one-sided whole differences at the border.
[[gnu::always_inline]] inline void gradientRow(const PlaneView<const Byte>& plane, int y, GradientRow& out) {
    const Byte* row = plane.row(y);
    const Byte* above = plane.row(std::max(y - 1, 0));
    const Byte* below = plane.row(std::min(y + 1, plane.height - 1));
    const int yDivisor = y > 0 && y < plane.height - 1 ? 2 : 1;
    const auto last = static_cast<std::size_t>(plane.width) - 1;
    std::int16_t *gx = out.gx.data(), *gy = out.gy.data(), *magnitude = out.magnitude.data();
    for (std::size_t x = 1; x < last; ++x) gx[x] = static_cast<std::int16_t>((row[x + 1] - row[x - 1]) / 2);
    gx[0] = static_cast<std::int16_t>(row[1] - row[0]);
    gx[last] = static_cast<std::int16_t>(row[last] - row[last - 1]);
    if (yDivisor == 2)
        for (std::size_t x = 0; x <= last; ++x) gy[x] = static_cast<std::int16_t>((below[x] - above[x]) / 2);
    else
        for (std::size_t x = 0; x <= last; ++x) gy[x] = static_cast<std::int16_t>(below[x] - above[x]);
    fillMagnitude(gx, gy, magnitude, last + 1);
}

/// Writes the magnitude of every inner pixel of the middle row that neither neighbour along its gradient
/// exceeds, and 0 for the rest. The neighbours lie between two pixels: the straight one, across the larger
/// component, and the diagonal one.
[[gnu::always_inline]] inline void thinRow(const GradientRow& above, const GradientRow& middle,
                                           const GradientRow& below, std::size_t width, Byte* out) {
    const std::int16_t *gx = middle.gx.data(), *gy = middle.gy.data();
    const std::int16_t *up = above.magnitude.data(), *here = middle.magnitude.data(),
                       *down = below.magnitude.data();
    out[0] = out[width - 1] = 0;
    for (std::size_t x = 1; x + 1 < width; ++x) {
        const int dx = gx[x] < 0 ? -gx[x] : gx[x], dy = gy[x] < 0 ? -gy[x] : gy[x];
        const bool steep = dy > dx, sameSign = (gx[x] ^ gy[x]) >= 0;
        const int larger = steep ? dy : dx, smaller = steep ? dx : dy;
        const int upLeft = up[x - 1], upRight = up[x + 1], downLeft = down[x - 1], downRight = down[x + 1];
        const int straightA = steep ? up[x] : here[x - 1], straightB = steep ? down[x] : here[x + 1];
        const int crossA = steep ? upRight : downLeft, crossB = steep ? downLeft : upRight;
        const int diagonalA = sameSign ? upLeft : crossA, diagonalB = sameSign ? downRight : crossB;
        const float ratio = static_cast<float>(smaller) / static_cast<float>(larger > 1 ? larger : 1);
        const float a = static_cast<float>(straightA) + static_cast<float>(diagonalA - straightA) * ratio;
        const float b = static_cast<float>(straightB) + static_cast<float>(diagonalB - straightB) * ratio;
        const float m = static_cast<float>(here[x]);
        out[x] = static_cast<Byte>((m >= a && m >= b) ? here[x] : 0);
    }
}

/// Gradient and thinning of rows [begin, end), through a window of three gradient rows.
[[gnu::always_inline]] inline void thinBand(const PlaneView<const Byte>& plane, const PlaneView<Byte>& edges,
                                            int begin, int end) {
    const auto width = static_cast<std::size_t>(plane.width);
    std::array<GradientRow, 3> window{GradientRow(width), GradientRow(width), GradientRow(width)};
    const auto slot = [&](int y) -> GradientRow& { return window[static_cast<std::size_t>(y % 3)]; };
    int filled = std::max(begin - 1, 0);
    for (int y = begin; y < end; ++y) {
        if (y == 0 || y == plane.height - 1) {
            std::memset(edges.row(y), 0, width);
            continue;
        }
        for (; filled <= y + 1; ++filled) gradientRow(plane, filled, slot(filled));
        thinRow(slot(y - 1), slot(y), slot(y + 1), width, edges.row(y));
    }
}

void thinBandBaseline(const PlaneView<const Byte>& plane, const PlaneView<Byte>& edges, int begin, int end) {
    thinBand(plane, edges, begin, end);
}
ZEL_TARGET_AVX2 void thinBandAvx2(const PlaneView<const Byte>& plane, const PlaneView<Byte>& edges, int begin,
                                  int end) {
    thinBand(plane, edges, begin, end);
}

struct Thresholds {
    int low, high;
};

/// Thresholds from the histogram of the thinned magnitudes.
Thresholds autoThresholds(const PlaneView<Byte>& edges) {
    std::array<std::int64_t, 256> bins{};
    std::mutex mutex;
    parallelRows(edges.height, [&](int begin, int end) {
        std::array<std::uint32_t, 256> part[2]{};
        for (int y = begin; y < end; ++y) {
            const Byte* row = edges.row(y);
            for (int x = 0; x < edges.width; ++x) ++part[x & 1][row[x]];
        }
        const std::lock_guard<std::mutex> lock(mutex);
        for (std::size_t i = 0; i < bins.size(); ++i) bins[i] += std::int64_t{part[0][i]} + part[1][i];
    });
    std::int64_t count = 0;
    for (std::size_t i = 1; i < bins.size(); ++i) count += bins[i];
    const auto wanted = static_cast<std::int64_t>(static_cast<float>(count) * kHighQuantile + 0.5f);
    std::int64_t sum = 0;
    int high = 0;
    do sum += bins[static_cast<std::size_t>(++high)];
    while (sum < wanted && high < 255);
    high = std::max(high, kSmallestAutoHigh);
    return {std::max(static_cast<int>(static_cast<float>(high) * kLowShare + 0.5f), 1), high};
}

/// Marks chains from their seeds. The outcome is the set of candidates linked to a seed, whatever the order
/// in which they are followed, so bands follow their own rows at once and leave what crosses a border to
/// one last walk over the whole plane.
class ChainFollower {
public:
    ChainFollower(const PlaneView<Byte>& edges, Thresholds limits)
        : m_edges(edges),
          m_low(static_cast<Byte>(std::clamp(limits.low, 1, kMostMagnitude))),
          m_high(static_cast<Byte>(std::clamp(limits.high, 1, kMostMagnitude))) {}

    void run() {
        std::vector<Byte*> crossing;
        std::mutex mutex;
        parallelRows(m_edges.height, [&](int begin, int end) {
            const std::vector<Byte*> leaving = followBand(begin, end);
            const std::lock_guard<std::mutex> lock(mutex);
            crossing.insert(crossing.end(), leaving.begin(), leaving.end());
        });
        while (!crossing.empty()) {
            Byte* pixel = crossing.back();
            crossing.pop_back();
            markNeighbours(pixel, -1, 1, crossing);
        }
        parallelRows(m_edges.height, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                Byte* row = m_edges.row(y);
                for (int x = 0; x < m_edges.width; ++x) row[x] = row[x] == kEdge ? kEdge : 0;
            }
        });
    }

private:
    /// Follows the chains of a band within it. Returns the edge pixels on its first and last row.
    std::vector<Byte*> followBand(int begin, int end) const {
        std::vector<Byte*> stack, leaving;
        const Byte *secondRow = m_edges.data + (std::ptrdiff_t{begin} + 1) * m_edges.stride,
                   *lastRow = m_edges.row(end - 1);
        for (int y = begin; y < end; ++y)
            for (Byte *pixel = m_edges.row(y), *rowEnd = pixel + m_edges.width; pixel < rowEnd; ++pixel) {
                if (*pixel < m_high || *pixel == kEdge) continue;
                *pixel = kEdge;
                stack.push_back(pixel);
                while (!stack.empty()) {
                    Byte* at = stack.back();
                    stack.pop_back();
                    const bool first = at < secondRow, last = at >= lastRow;
                    if (first || last) leaving.push_back(at);
                    markNeighbours(at, first ? 0 : -1, last ? 0 : 1, stack);
                }
            }
        return leaving;
    }

    /// Marks and pushes the candidates around a pixel, within rows `fromRow` to `toRow` around it. The border
    /// of the plane holds no candidate, so no neighbour lies outside.
    void markNeighbours(Byte* pixel, int fromRow, int toRow, std::vector<Byte*>& stack) const {
        for (int dy = fromRow; dy <= toRow; ++dy) {
            Byte* centre = pixel + dy * m_edges.stride;
            for (int dx = -1; dx <= 1; ++dx) {
                if (centre[dx] < m_low || centre[dx] == kEdge) continue;
                centre[dx] = kEdge;
                stack.push_back(centre + dx);
            }
        }
    }

    PlaneView<Byte> m_edges;
    Byte m_low, m_high;
};

}  // namespace

bool EdgeDetectCanny(const unsigned char* plane, unsigned char* edges, int width, int height, int rowSize,
                     int /*reserved*/, int low, int high, bool autoThreshold) {
    if (!plane || !edges || rowSize != width || width < 2 || height < 2) return false;
    std::vector<Byte> copy;  // rows are read again after their neighbours are written
    if (plane == edges) {
        copy.assign(plane, plane + sampleCount(width, height));
        plane = copy.data();
    }
    const PlaneView<const Byte> source(plane, width, height);
    const PlaneView<Byte> target(edges, width, height);
    const bool wide = platform::simdLevel() == platform::SimdLevel::avx2;
    parallelRows(height, [&](int begin, int end) {
        (wide ? thinBandAvx2 : thinBandBaseline)(source, target, begin, end);
    });
    const Thresholds limits =
        autoThreshold ? autoThresholds(target) : Thresholds{std::min(low, high), std::max(low, high)};
    ChainFollower(target, limits).run();
    return true;
}

}  // namespace zellab
