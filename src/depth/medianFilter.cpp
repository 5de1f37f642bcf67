#include "depth/medianFilter.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

constexpr int kLevels = 256;

/// The histogram of a window, with the level where the wanted count is reached.
class RankHistogram {
public:
    explicit RankHistogram(std::int64_t rank) : m_rank(rank) {}

    void clear() {
        m_counts.fill(0);
        m_below = 0;
        m_level = 0;
    }
    void add(Byte value) {
        ++m_counts[value];
        m_below += value < m_level;
    }
    void remove(Byte value) {
        --m_counts[value];
        m_below -= value < m_level;
    }
    /// The first level at which the count from 0 on reaches the rank; 255 if none does.
    Byte level() {
        // From where the last window left it: neighbours differ little.
        while (m_level > 0 && m_below >= m_rank) m_below -= m_counts[static_cast<std::size_t>(--m_level)];
        while (m_level < kLevels - 1 && m_below + m_counts[static_cast<std::size_t>(m_level)] < m_rank)
            m_below += m_counts[static_cast<std::size_t>(m_level++)];
        return static_cast<Byte>(m_level);
    }

private:
    std::array<std::int64_t, kLevels> m_counts{};
    std::int64_t m_rank, m_below = 0;  // samples below m_level
    int m_level = 0;
};

}  // namespace

void MedianFilterPlane(PlaneView<Byte> plane, int window) {
    if (!plane.valid() || window < 1) return;
    const int width = plane.width, height = plane.height;
    const int half = (window - 1) / 2;
    if (width <= 2 * std::int64_t{half} || height <= 2 * std::int64_t{half}) return;
    const Plane<Byte> source = copyOf(plane);
    RankHistogram histogram(std::int64_t{window} * window / 2 + 1);
    for (int y = half; y < height - half; ++y) {
        const auto forColumn = [&](int x, const auto& use) {
            for (int j = y - half; j <= y + half; ++j) use(source.row(j)[x]);
        };
        const auto add = [&](Byte value) { histogram.add(value); };
        histogram.clear();
        for (int x = 0; x < 2 * half; ++x) forColumn(x, add);
        for (int x = half; x < width - half; ++x) {
            forColumn(x + half, add);
            plane.row(y)[x] = histogram.level();
            forColumn(x - half, [&](Byte value) { histogram.remove(value); });
        }
    }
}

}  // namespace zellab
