#include "strokes.h"

#include "rowWorkers.h"

namespace zel::drawing {

namespace {

int boundedFloor(float v, int low, int high) {
    if (!(v > static_cast<float>(low))) return low;
    return v >= static_cast<float>(high) ? high : static_cast<int>(std::floor(v));
}

}  // namespace

void StrokeList::add(const std::vector<StrokePoint>& points) {
    if (points.size() < 2) return;
    Stroke stroke{m_points.size(), points.size(), points[0].at.y, points[0].at.y};
    for (const StrokePoint& p : points) {
        stroke.top = std::min(stroke.top, p.at.y - p.radius - 1.0f);
        stroke.bottom = std::max(stroke.bottom, p.at.y + p.radius + 1.0f);
        m_points.push_back(p);
    }
    m_strokes.push_back(stroke);
}

StrokeSheet::StrokeSheet(int pictureWidth, int pictureHeight, const StrokeList& list) {
    if (list.empty()) return;
    float left = 1e9f, right = -1e9f, top = 1e9f, bottom = -1e9f;
    for (const StrokeList::Stroke& stroke : list.strokes())
        for (std::size_t i = stroke.first; i < stroke.first + stroke.count; ++i) {
            const StrokePoint& p = list.point(i);
            left = std::min(left, p.at.x - p.radius - 1.0f);
            right = std::max(right, p.at.x + p.radius + 1.0f);
            top = std::min(top, p.at.y - p.radius - 1.0f);
            bottom = std::max(bottom, p.at.y + p.radius + 1.0f);
        }
    m_left = boundedFloor(left, 0, pictureWidth);
    m_top = boundedFloor(top, 0, pictureHeight);
    m_width = boundedFloor(right + 1, m_left, pictureWidth) - m_left;
    m_height = boundedFloor(bottom + 1, m_top, pictureHeight) - m_top;
    if (m_width == 0 || m_height == 0) {
        m_width = m_height = 0;
        return;
    }
    m_samples.resize(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height));
    forRowBands(m_height, [&](int begin, int end) {
        for (const StrokeList::Stroke& stroke : list.strokes())
            if (stroke.bottom >= static_cast<float>(m_top + begin) &&
                stroke.top < static_cast<float>(m_top + end))
                draw(list, stroke, m_top + begin, m_top + end);
    });
}

void StrokeSheet::draw(const StrokeList& list, const StrokeList::Stroke& stroke, int rowBegin, int rowEnd) {
    for (std::size_t i = 1; i < stroke.count; ++i)
        drawSegment(list.point(stroke.first + i - 1), list.point(stroke.first + i), rowBegin, rowEnd);
}

void StrokeSheet::drawSegment(const StrokePoint& a, const StrokePoint& b, int rowBegin, int rowEnd) {
    const Vec2 d = b.at - a.at;
    const float squared = dot(d, d);
    if (squared < 1e-10f) return;
    const float reach = std::max(a.radius, b.radius) + 0.8f, lengthOf = std::sqrt(squared);
    // Walk along the longer axis and touch only the pixels across the line. Each pixel centre belongs to one
    // segment of a stroke, so that thin joints are not laid down twice.
    const bool flat = std::fabs(d.x) > std::fabs(d.y);
    const float mainFrom = flat ? a.at.x : a.at.y, mainStep = flat ? d.x : d.y;
    const float sideFrom = flat ? a.at.y : a.at.x, sideStep = flat ? d.y : d.x;
    const float slope = sideStep / mainStep, half = reach * lengthOf / std::fabs(mainStep);
    const float widen = reach * std::fabs(sideStep) / lengthOf;
    const int mainLow = flat ? m_left : rowBegin, mainHigh = flat ? m_left + m_width : rowEnd;
    const int sideLow = flat ? rowBegin : m_left, sideHigh = flat ? rowEnd : m_left + m_width;
    const float mainEnd = mainFrom + mainStep;
    const int first = boundedFloor(std::min(mainFrom, mainEnd) - widen - 0.5f, mainLow, mainHigh);
    const int last = boundedFloor(std::max(mainFrom, mainEnd) + widen + 0.5f, mainLow, mainHigh);
    for (int m = first; m < std::min(last + 1, mainHigh); ++m) {
        const float along = static_cast<float>(m) + 0.5f - mainFrom;
        const float middle = sideFrom + slope * along;
        const int sideFirst = boundedFloor(middle - half, sideLow, sideHigh);
        const int sideLast = boundedFloor(middle + half + 1, sideLow, sideHigh);
        for (int s = sideFirst; s < sideLast; ++s) {
            const float across = static_cast<float>(s) + 0.5f - sideFrom;
            const float t = (along * mainStep + across * sideStep) / squared;
            if (t < 0 || t >= 1) continue;
            const float distance = std::fabs(across * mainStep - along * sideStep) / lengthOf;
            lay(flat ? m : s, flat ? s : m, a, b, t, distance);
        }
    }
}

void StrokeSheet::lay(int x, int y, const StrokePoint& a, const StrokePoint& b, float t, float distance) {
    const float radius = mix(a.radius, b.radius, t);
    // A line thinner than a pixel keeps its width and loses cover instead.
    const float drawn = std::max(radius, 0.5f);
    const float cover = clamp01(0.5f + drawn - distance) * mix(a.cover, b.cover, t) * (radius / drawn);
    if (cover <= 0) return;
    Sample& sample = m_samples[index(x, y)];
    const float keep = 1.0f - cover;
    sample.colour = sample.colour * keep + mix(a.colour, b.colour, t) * cover;
    sample.depth = sample.depth * keep + mix(a.depth, b.depth, t) * cover;
    sample.cover = sample.cover * keep + cover;
}

}  // namespace zel::drawing
