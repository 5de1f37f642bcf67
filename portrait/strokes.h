#pragma once

#include <vector>

#include "portraitMath.h"

namespace zel::drawing {

/// One station of a stroke, in pixels.
struct StrokePoint {
    Vec2 at;
    float radius = 0.5f;
    float depth = 0;
    float cover = 1;  // 0 to 1
    Colour colour;
};

/// Strokes in the order in which they are laid down.
class StrokeList {
public:
    /// Fewer than two points make no stroke.
    void add(const std::vector<StrokePoint>& points);

    struct Stroke {
        std::size_t first = 0, count = 0;
        float top = 0, bottom = 0;
    };
    const std::vector<Stroke>& strokes() const { return m_strokes; }
    const StrokePoint& point(std::size_t i) const { return m_points[i]; }
    bool empty() const { return m_strokes.empty(); }

private:
    std::vector<Stroke> m_strokes;
    std::vector<StrokePoint> m_points;
};

/// A transparent sheet with strokes on it. It covers only the part of the picture that they reach.
class StrokeSheet {
public:
    StrokeSheet(int pictureWidth, int pictureHeight, const StrokeList& strokes);

    struct Sample {
        Colour colour;    // times cover
        float depth = 0;  // times cover
        float cover = 0;
    };
    /// Transparent outside the sheet.
    Sample at(int x, int y) const {
        if (x < m_left || x >= m_left + m_width || y < m_top || y >= m_top + m_height) return {};
        return m_samples[index(x, y)];
    }

private:
    void draw(const StrokeList& list, const StrokeList::Stroke& stroke, int rowBegin, int rowEnd);
    void drawSegment(const StrokePoint& a, const StrokePoint& b, int rowBegin, int rowEnd);
    void lay(int x, int y, const StrokePoint& a, const StrokePoint& b, float t, float distance);
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - m_top) * static_cast<std::size_t>(m_width) +
               static_cast<std::size_t>(x - m_left);
    }

    int m_left = 0, m_top = 0, m_width = 0, m_height = 0;
    std::vector<Sample> m_samples;
};

}  // namespace zel::drawing
