#include "zellab/geometry/curveTools.h"

#include <algorithm>
#include <cmath>

namespace zellab {

namespace {

/// Shortest chord, in the points' unit, that gives a direction.
constexpr float kShortestChord = 0.001f;
/// Two points nearer than this along the chord count as this far apart.
constexpr float kShortestStep = 0.0001f;

float lagrangeAt(const Vector2f* points, int count, float x) {
    float y = 0.0f;
    for (int j = 0; j < count; ++j) {
        float term = points[j].y;
        for (int m = 0; m < count; ++m) {
            if (m == j) continue;
            const float distance = points[j].x - points[m].x;
            term *= (x - points[m].x) / (std::fabs(distance) < kShortestStep ? kShortestStep : distance);
        }
        y += term;
    }
    return y;
}

Vector2f cardinalAt(const Vector2f p[4], float tension, float t) {
    const float t2 = t * t, t3 = t2 * t;
    const float h1 = 2.0f * t3 - 3.0f * t2 + 1.0f;
    const float h2 = 3.0f * t2 - 2.0f * t3;
    const float slope1 = t3 - 2.0f * t2 + t;
    const float slope2 = t3 - t2;
    const auto axis = [&](float p0, float p1, float p2, float p3) {
        return p1 * h1 + p2 * h2 + tension * (p2 - p0) * slope1 + tension * (p3 - p1) * slope2;
    };
    return {axis(p[0].x, p[1].x, p[2].x, p[3].x), axis(p[0].y, p[1].y, p[2].y, p[3].y)};
}

}  // namespace

void ChordLagrangeResample(Vector2f* points, int count, Vector2f* out, int samples) {
    if (count < 1 || samples < 1) return;
    const Vector2f origin = points[0];
    const float chordX = points[count - 1].x - origin.x, chordY = points[count - 1].y - origin.y;
    const float length = std::max(std::sqrt(chordX * chordX + chordY * chordY), kShortestChord);
    const Vector2f u{chordX / length, chordY / length};
    for (int i = 0; i < count; ++i) {
        const float dx = points[i].x - origin.x, dy = points[i].y - origin.y;
        points[i] = {dx * u.x + dy * u.y, dy * u.x - dx * u.y};
    }
    const float first = points[0].x;
    // A single sample has no step.
    const float step = samples > 1 ? (points[count - 1].x - first) / static_cast<float>(samples - 1) : 0.0f;
    for (int i = 0; i < samples; ++i) {
        const float x = first + step * static_cast<float>(i);
        const float y = lagrangeAt(points, count, x);
        out[i] = {x * u.x - y * u.y + origin.x, x * u.y + y * u.x + origin.y};
    }
}

int HermiteSpline(Vector2f* out, const Vector2f* points, int count, float tension, int subdivisions) {
    if (count < 4 || subdivisions < 0) return 0;
    const int samples = (count - 1) * (subdivisions + 1);
    if (!out || !points) return samples;
    for (int segment = 0; segment + 1 < count; ++segment) {
        const Vector2f neighbours[4] = {points[std::max(segment - 1, 0)], points[segment],
                                        points[segment + 1], points[std::min(segment + 2, count - 1)]};
        for (int k = 0; k <= subdivisions; ++k) {
            // No subdivision leaves the start of each segment.
            const float t =
                subdivisions > 0 ? static_cast<float>(k) / static_cast<float>(subdivisions) : 0.0f;
            *out++ = cardinalAt(neighbours, tension, t);
        }
    }
    return samples;
}

}  // namespace zellab
