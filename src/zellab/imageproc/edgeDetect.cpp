#include "zellab/imageproc/edgeDetect.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <vector>

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

/// Words that a row of vectors may read past its pixels.
constexpr std::size_t kSlack = 16;

/// Gradient and magnitude of one row.
struct GradientRow {
    explicit GradientRow(std::size_t width)
        : gx(width + kSlack), gy(width + kSlack), magnitude(width + kSlack) {}
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
void gradientRow(const PlaneView<const Byte>& plane, int y, GradientRow& out) {
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

/// Eight words as floats, the low or the high four.
inline __m128 lowFloats(__m128i words) {
    return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(words, words), 16));
}
inline __m128 highFloats(__m128i words) {
    return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(words, words), 16));
}

/// Mask of the lanes whose magnitude is no less than that between a straight and a diagonal neighbour.
inline __m128 reaches(__m128 magnitude, __m128 straight, __m128 towardsDiagonal, __m128 ratio) {
    return _mm_cmpge_ps(magnitude, _mm_add_ps(straight, _mm_mul_ps(towardsDiagonal, ratio)));
}

/// The pixels of eight columns that neither neighbour along their gradient exceeds keep their magnitude, the
/// rest become 0. The neighbours lie between two pixels: the straight one, across the larger component, and
/// the diagonal one, by the ratio of the smaller to the larger component. Written with branches, the
/// compiler does not make vectors of it, and noisy directions defeat the branch predictor.
inline __m128i thinEight(__m128i gx, __m128i gy, const std::int16_t* up, const std::int16_t* here,
                         const std::int16_t* down) {
    const __m128i magnitude = load(here);
    const __m128i dx = absolute(gx), dy = absolute(gy);
    const __m128i steep = _mm_cmpgt_epi16(dy, dx),
                  sameSign = _mm_cmpgt_epi16(_mm_xor_si128(gx, gy), _mm_set1_epi16(-1));
    const __m128i larger = _mm_max_epi16(_mm_max_epi16(dx, dy), _mm_set1_epi16(1)),
                  smaller = _mm_min_epi16(dx, dy);
    const __m128i upRight = load(up + 1), downLeft = load(down - 1);
    const __m128i straightA = pick(steep, load(up), load(here - 1));
    const __m128i straightB = pick(steep, load(down), load(here + 1));
    const __m128i diagonalA = pick(sameSign, load(up - 1), pick(steep, upRight, downLeft));
    const __m128i diagonalB = pick(sameSign, load(down + 1), pick(steep, downLeft, upRight));
    const __m128i stepA = _mm_sub_epi16(diagonalA, straightA), stepB = _mm_sub_epi16(diagonalB, straightB);

    const __m128 lowRatio = _mm_div_ps(lowFloats(smaller), lowFloats(larger));
    const __m128 highRatio = _mm_div_ps(highFloats(smaller), highFloats(larger));
    const __m128 low =
        _mm_and_ps(reaches(lowFloats(magnitude), lowFloats(straightA), lowFloats(stepA), lowRatio),
                   reaches(lowFloats(magnitude), lowFloats(straightB), lowFloats(stepB), lowRatio));
    const __m128 high =
        _mm_and_ps(reaches(highFloats(magnitude), highFloats(straightA), highFloats(stepA), highRatio),
                   reaches(highFloats(magnitude), highFloats(straightB), highFloats(stepB), highRatio));
    return _mm_and_si128(magnitude, _mm_packs_epi32(_mm_castps_si128(low), _mm_castps_si128(high)));
}

/// Thins the inner pixels of the middle row; the border becomes 0.
void thinRow(const GradientRow& above, const GradientRow& middle, const GradientRow& below, std::size_t width,
             Byte* out) {
    std::size_t x = 1;
    for (; x + 1 < width; x += 8) {
        const __m128i kept =
            thinEight(load(middle.gx.data() + x), load(middle.gy.data() + x), above.magnitude.data() + x,
                      middle.magnitude.data() + x, below.magnitude.data() + x);
        const __m128i bytes = _mm_packus_epi16(kept, kept);
        if (x + 8 <= width) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), bytes);
        } else {
            alignas(16) Byte last[16];
            _mm_store_si128(reinterpret_cast<__m128i*>(last), bytes);
            std::memcpy(out + x, last, width - x);
        }
    }
    out[0] = out[width - 1] = 0;
}

/// Gradient and thinning of rows [begin, end), through a window of three gradient rows.
void thinBand(const PlaneView<const Byte>& plane, const PlaneView<Byte>& edges, int begin, int end) {
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
    parallelRows(height, [&](int begin, int end) { thinBand(source, target, begin, end); });
    const Thresholds limits =
        autoThreshold ? autoThresholds(target) : Thresholds{std::min(low, high), std::max(low, high)};
    ChainFollower(target, limits).run();
    return true;
}

}  // namespace zellab
