#include "zellab/imageproc/shapes/polygonFill.h"

#include <algorithm>
#include <cmath>

#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

/// Truncates a coordinate into [low, high], so that values far outside do not overflow.
int truncateInto(float value, int low, int high) {
    return static_cast<int>(std::clamp(value, static_cast<float>(low), static_cast<float>(high)));
}

struct FilledRow {
    int first, last;  // columns, inclusive
};

/// The spans of a closed polygon, row by row.
class PolygonRows {
public:
    PolygonRows(const std::vector<Vector2f>& polygon, int width, int height) : m_polygon(polygon) {
        const auto [minX, maxX] = std::minmax_element(polygon.begin(), polygon.end(),
                                                      [](Vector2f a, Vector2f b) { return a.x < b.x; });
        const auto [minY, maxY] = std::minmax_element(polygon.begin(), polygon.end(),
                                                      [](Vector2f a, Vector2f b) { return a.y < b.y; });
        m_left = truncateInto(minX->x, 0, width);
        m_right = truncateInto(maxX->x + 1.0f, -1, width - 1);
        m_top = truncateInto(minY->y, 0, height);
        m_bottom = truncateInto(maxY->y + 1.0f, -1, height - 1);
    }

    template <typename Fill>
    void forEach(const Fill& fill) {
        for (int y = m_top; y <= m_bottom; ++y) {
            collectLimits(static_cast<float>(y));
            const FilledRow row = spanOfRow();
            if (row.first <= row.last) fill(y, row);
        }
    }

private:
    /// The edges that meet the row count at every x up to their limit.
    void collectLimits(float y) {
        m_limits.clear();
        for (std::size_t i = 0; i < m_polygon.size(); ++i) {
            const Vector2f a = m_polygon[i], b = m_polygon[(i + 1) % m_polygon.size()];
            if (!(y > std::min(a.y, b.y)) || !(std::max(a.y, b.y) >= y) || a.y == b.y) continue;
            const float farthest = std::max(a.x, b.x);
            if (a.x == b.x) {
                m_limits.push_back(farthest);
            } else {
                m_limits.push_back(std::min((b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x, farthest));
            }
        }
    }

    bool isInside(int x) const {
        const auto crossings = std::count_if(m_limits.begin(), m_limits.end(),
                                             [x](float limit) { return limit >= static_cast<float>(x); });
        return crossings % 2 != 0;
    }

    FilledRow spanOfRow() const {
        int first = m_left;
        while (first <= m_right && !isInside(first)) ++first;
        int last = first - 1;
        for (int low = first, high = m_right; low <= high;) {
            const int middle = low + (high - low) / 2;
            if (isInside(middle)) {
                last = middle;
                low = middle + 1;
            } else {
                high = middle - 1;
            }
        }
        return {first, last};
    }

    const std::vector<Vector2f>& m_polygon;
    std::vector<float> m_limits;
    int m_left, m_right, m_top, m_bottom;
};

bool isFinite(const std::vector<Vector2f>& polygon) {
    return std::all_of(polygon.begin(), polygon.end(),
                       [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); });
}

}  // namespace

bool FillPolygonMask(PlaneView<Byte> plane, const std::vector<Vector2f>& polygon, Byte value) {
    if (!plane.valid() || polygon.empty()) return false;
    if (!isFinite(polygon)) return true;
    PolygonRows(polygon, plane.width, plane.height).forEach([&](int y, FilledRow row) {
        std::fill(plane.row(y) + row.first, plane.row(y) + row.last + 1, value);
    });
    return true;
}

bool FillPolygonMaskKeep(PlaneView<Byte> plane, const std::vector<Vector2f>& polygon, Byte outside) {
    if (!plane.valid() || polygon.empty()) return false;
    const Plane<Byte> kept = copyOf(plane);
    for (int y = 0; y < plane.height; ++y) std::fill_n(plane.row(y), plane.width, outside);
    if (!isFinite(polygon)) return true;
    PolygonRows(polygon, plane.width, plane.height).forEach([&](int y, FilledRow row) {
        std::copy(kept.row(y) + row.first, kept.row(y) + row.last + 1, plane.row(y) + row.first);
    });
    return true;
}

}  // namespace zellab
