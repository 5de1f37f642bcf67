#pragma once

#include <array>

#include "zel_effects/zel_records.h"

namespace zellab {

/// Columns first..last of one row; empty where last is below first.
struct PixelSpan {
    int first = 0, last = -1;
    bool empty() const { return last < first; }
};

/// The pixels of a triangle, row by row: a pixel belongs to it where, for each edge, its centre does not lie
/// on the other side than the third vertex. Pixels on an edge belong to both neighbours. A triangle without
/// area takes what the same test admits, which is its whole box where two vertices are equal; one with a
/// vertex that is not a number is empty.
class TriangleRaster {
public:
    /// The box of the vertices, rounded half away from zero, is cut at a picture of that size.
    TriangleRaster(Vector2f a, Vector2f b, Vector2f c, int width, int height);

    int left() const { return m_left; }
    int right() const { return m_right; }
    int top() const { return m_top; }
    int bottom() const { return m_bottom; }
    bool empty() const { return m_right < m_left || m_bottom < m_top; }

    /// The pixels of row y, which lies in top..bottom.
    PixelSpan span(int y) const;

private:
    /// Side test of one edge, in single precision.
    struct Edge {
        float x, y;       // one end
        float dx, dy;     // to the other end
        float thirdSide;  // cross product of the third vertex
        float crossOf(int px, int py) const {
            return dx * (static_cast<float>(py) - y) - dy * (static_cast<float>(px) - x);
        }
        bool admits(int px, int py) const { return thirdSide * crossOf(px, py) >= 0.0f; }
    };

    static Edge edgeOf(Vector2f a, Vector2f b, Vector2f third);
    bool inside(int x, int y) const;
    PixelSpan searchedSpan(int y) const;
    static bool narrow(const Edge& edge, int y, PixelSpan& span);

    std::array<Edge, 3> m_edges;
    int m_left = 0, m_right = -1, m_top = 0, m_bottom = -1;
    bool m_monotone = true;
};

}  // namespace zellab
