#include "zellab/imageproc/edges/edgeDetect.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/edges/edgeThinning.h"

namespace zellab {

namespace {

/// A found edge. No candidate has that magnitude, so the edge plane can hold the candidates' on the way.
constexpr Byte kEdge = 255;
constexpr int kMostMagnitude = kEdge - 1;

/// Automatic thresholds: `high` is passed by a tenth of the thinned pixels, `low` is a share of it.
constexpr float kHighQuantile = 0.9f, kLowShare = 0.35f;
constexpr int kSmallestAutoHigh = 16;

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
        const auto follow = [&](Byte* seed) {
            *seed = kEdge;
            stack.push_back(seed);
            while (!stack.empty()) {
                Byte* at = stack.back();
                stack.pop_back();
                const bool first = at < secondRow, last = at >= lastRow;
                if (first || last) leaving.push_back(at);
                markNeighbours(at, first ? 0 : -1, last ? 0 : 1, stack);
            }
        };
        for (int y = begin; y < end; ++y) {
            Byte *pixel = m_edges.row(y), *rowEnd = pixel + m_edges.width;
            for (; pixel + 16 <= rowEnd; pixel += 16)
                // A chain may run through the sixteen and take later seeds: each is looked at again.
                for (unsigned bits = seedBits(pixel); bits; bits &= bits - 1)
                    if (Byte* seed = pixel + std::countr_zero(bits); *seed != kEdge) follow(seed);
            for (; pixel < rowEnd; ++pixel)
                if (*pixel >= m_high && *pixel != kEdge) follow(pixel);
        }
        return leaving;
    }

    /// One bit for each of sixteen pixels that reaches `high` and is not marked yet.
    unsigned seedBits(const Byte* pixels) const {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
        const __m128i high = _mm_set1_epi8(static_cast<char>(m_high)),
                      edge = _mm_set1_epi8(static_cast<char>(kEdge));
        const __m128i reached = _mm_cmpeq_epi8(_mm_max_epu8(sixteen, high), sixteen);
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_andnot_si128(_mm_cmpeq_epi8(sixteen, edge), reached)));
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

bool EdgeDetectCanny(PlaneView<const Byte> plane, PlaneView<Byte> edges, int low, int high,
                     bool autoThreshold) {
    if (!plane.valid() || !edges.valid() || plane.width < 2 || plane.height < 2) return false;
    Plane<Byte> copy;  // rows are read again after their neighbours are written
    if (plane.data == edges.data) {
        copy = copyOf(plane);
        plane = copy.view();
    }
    if (low > high) std::swap(low, high);
    const platform::SimdLevel level = platform::simdLevel();
    const int least = autoThreshold ? 1 : std::clamp(low, 1, kMostMagnitude);
    parallelRows(plane.height,
                 [&](int begin, int end) { thinGradient(plane, edges, begin, end, least, level); });
    const Thresholds limits = autoThreshold ? autoThresholds(edges) : Thresholds{low, high};
    ChainFollower(edges, limits).run();
    return true;
}

}  // namespace zellab
