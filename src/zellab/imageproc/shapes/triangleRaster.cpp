#include "zellab/imageproc/shapes/triangleRaster.h"

#include <algorithm>
#include <cmath>

namespace zellab {

namespace {

/// Below this size of coordinates no product of a side test overflows, so that along a row each test
/// changes its answer once at most.
constexpr float kMonotoneLimit = 1e9f;

/// Rounds half away from zero after a cut to -1..limit, where the integer fits.
int roundedWithin(float value, int limit) {
    return static_cast<int>(std::round(std::clamp(value, -1.0f, static_cast<float>(limit))));
}

}  // namespace

TriangleRaster::TriangleRaster(Vector2f a, Vector2f b, Vector2f c, int width, int height)
    : m_edges{edgeOf(a, b, c), edgeOf(b, c, a), edgeOf(c, a, b)} {
    for (float value : {a.x, a.y, b.x, b.y, c.x, c.y}) {
        if (std::isnan(value)) return;  // no test would hold
        m_monotone = m_monotone && std::fabs(value) <= kMonotoneLimit;
    }
    m_left = std::max(roundedWithin(std::min({a.x, b.x, c.x}), width), 0);
    m_right = std::min(roundedWithin(std::max({a.x, b.x, c.x}), width), width - 1);
    m_top = std::max(roundedWithin(std::min({a.y, b.y, c.y}), height), 0);
    m_bottom = std::min(roundedWithin(std::max({a.y, b.y, c.y}), height), height - 1);
}

TriangleRaster::Edge TriangleRaster::edgeOf(Vector2f a, Vector2f b, Vector2f third) {
    Edge edge{a.x, a.y, b.x - a.x, b.y - a.y, 0.0f};
    edge.thirdSide = edge.dx * (third.y - a.y) - edge.dy * (third.x - a.x);
    return edge;
}

bool TriangleRaster::inside(int x, int y) const {
    return m_edges[0].admits(x, y) && m_edges[1].admits(x, y) && m_edges[2].admits(x, y);
}

PixelSpan TriangleRaster::span(int y) const {
    if (!m_monotone) return searchedSpan(y);
    PixelSpan span{m_left, m_right};
    for (const Edge& edge : m_edges)
        if (!narrow(edge, y, span)) return {};
    return span;
}

/// The meaning of a span: the first inside pixel from the left, and the last one that a bisection finds.
PixelSpan TriangleRaster::searchedSpan(int y) const {
    int first = m_left;
    while (first <= m_right && !inside(first, y)) ++first;
    int low = first, high = m_right;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (!inside(middle, y)) {
            high = middle - 1;
        } else if (inside(middle + 1, y)) {
            low = middle + 1;
        } else {
            return {first, middle};
        }
    }
    return {first, low <= m_right ? low : first - 1};
}

/// Cuts the span to where the edge's test holds. The test flips at most once along the row, so its answers
/// at both ends tell which end moves; the crossing is guessed by division and corrected by bisection.
/// @return false where nothing is left
bool TriangleRaster::narrow(const Edge& edge, int y, PixelSpan& span) {
    const bool atFirst = edge.admits(span.first, y), atLast = edge.admits(span.last, y);
    if (atFirst && atLast) return true;
    if (!atFirst && !atLast) return false;
    // low holds the answer of the first end, high that of the last; they close in on the flip.
    int low = span.first, high = span.last;
    const float crossing = edge.x + edge.dx * (static_cast<float>(y) - edge.y) / edge.dy;
    if (crossing > static_cast<float>(low) && crossing < static_cast<float>(high)) {
        const int guess = static_cast<int>(crossing);
        if (edge.admits(guess, y) == atFirst) {
            low = guess;
            if (guess + 1 < high && edge.admits(guess + 1, y) == atLast) high = guess + 1;
        } else {
            high = guess;
            if (guess - 1 > low && edge.admits(guess - 1, y) == atFirst) low = guess - 1;
        }
    }
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        (edge.admits(middle, y) == atFirst ? low : high) = middle;
    }
    if (atFirst) {
        span.last = low;
    } else {
        span.first = high;
    }
    return true;
}

}  // namespace zellab
