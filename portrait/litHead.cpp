#include "litHead.h"

#include "planeBlur.h"
#include "rowWorkers.h"

namespace zel::drawing {

LitHead::LitHead(const FaceShape& shape, const HeadPose& pose, const Scene& scene)
    : m_lamp(pose.toHead(scene.keyDirection)),
      m_camera(pose.toHead({0, 0, 1})),
      m_height(static_cast<std::size_t>(kWidth) * kHeight),
      m_points(m_height.size()) {
    raise(shape);
    bend();
    occlude();
    castShadows();
    illuminate(scene);
    scatter();
}

void LitHead::raise(const FaceShape& shape) {
    forRowBands(kHeight, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < kWidth; ++x)
                m_height[index(x, y)] = shape.relief(
                    {kLeft + kStep * static_cast<float>(x), kTop + kStep * static_cast<float>(y)});
    });
}

void LitHead::bend() {
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const int left = std::max(x - 1, 0), right = std::min(x + 1, kWidth - 1);
            const int up = std::max(y - 1, 0), down = std::min(y + 1, kHeight - 1);
            const float dx = (m_height[index(right, y)] - m_height[index(left, y)]) / (kStep * 2);
            const float dy = (m_height[index(x, down)] - m_height[index(x, up)]) / (kStep * 2);
            m_points[index(x, y)].normal = normalized({-dx, -dy, 1});
            m_points[index(x, y)].relief = m_height[index(x, y)];
        }
}

void LitHead::occlude() {
    // A point below the mean of its neighbourhood lies in a hollow; creases count at two sizes.
    struct Reach {
        int cells;
        float darkening;
    };
    constexpr Reach kReaches[] = {{5, 0.16f}, {16, 0.050f}};
    for (const Reach& reach : kReaches) {
        std::vector<float> around = m_height;
        softenPlane(around, kWidth, kHeight, reach.cells);
        for (std::size_t i = 0; i < around.size(); ++i) {
            const float depth = std::max(0.0f, around[i] - m_height[i]);
            m_points[i].open *= 1.0f / (1.0f + reach.darkening * depth);
        }
    }
}

float LitHead::heightAt(float column, float row) const {
    const float x = std::min(std::max(column, 0.0f), kWidth - 1.001f);
    const float y = std::min(std::max(row, 0.0f), kHeight - 1.001f);
    const int ix = static_cast<int>(x), iy = static_cast<int>(y);
    const float u = x - static_cast<float>(ix), v = y - static_cast<float>(iy);
    const std::size_t i = index(ix, iy);
    return mix(mix(m_height[i], m_height[i + 1], u), mix(m_height[i + kWidth], m_height[i + kWidth + 1], u),
               v);
}

void LitHead::castShadows() {
    // Walk towards the lamp in growing steps; the further the obstacle, the softer its shadow.
    constexpr int kSteps = 26;
    constexpr float kBehind = -80;  // mm; such points lie outside the outline, where nobody looks
    constexpr float kSoftness = 0.34f;
    const float climb = std::max(m_lamp.z, 0.15f);
    forRowBands(kHeight, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < kWidth; ++x) {
                float hidden = 0, distance = 0.8f;
                const float from = m_height[index(x, y)];
                if (from < kBehind) continue;
                for (int i = 0; i < kSteps; ++i, distance *= 1.17f) {
                    const float over = heightAt(static_cast<float>(x) + m_lamp.x * distance / kStep,
                                                static_cast<float>(y) + m_lamp.y * distance / kStep) -
                                       (from + climb * distance);
                    hidden = std::max(hidden, 0.5f + over / (2 * kSoftness * distance + 0.5f));
                }
                m_points[index(x, y)].keyVisible = 1.0f - smoothStep(0.25f, 1.0f, hidden);
            }
    });
}

void LitHead::illuminate(const Scene& scene) {
    constexpr float kWrap = 0.12f;  // skin glows a little past the lamp's horizon
    for (LitPoint& point : m_points) {
        const float lamp = clamp01((dot(point.normal, m_lamp) + kWrap) / (1 + kWrap)) * point.keyVisible;
        const float front = clamp01(dot(point.normal, m_camera));
        const float above = 0.55f - 0.45f * point.normal.y;
        // Chest and clothes throw light up, and the walls of a hollow light each other.
        const float below = clamp01(point.normal.y);
        const Colour bounced =
            Colour{0.10f, 0.055f, 0.035f} * (1.0f - point.open) + (scene.key + scene.sky) * (0.13f * below);
        point.light = scene.key * lamp + scene.fill * (front * mix(0.4f, 1.0f, point.open)) +
                      scene.sky * (above * point.open) + bounced;
    }
}

void LitHead::scatter() {
    constexpr int kReach[3] = {5, 2, 1};  // cells, for red, green and blue
    constexpr float kShare = 0.75f;       // of the light that travels under the surface
    float Vec3::*const channels[3] = {&Vec3::x, &Vec3::y, &Vec3::z};
    std::vector<float> plane(m_points.size());
    for (int c = 0; c < 3; ++c) {
        for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = m_points[i].light.*channels[c];
        softenPlane(plane, kWidth, kHeight, kReach[c]);
        for (std::size_t i = 0; i < plane.size(); ++i) {
            float& light = m_points[i].light.*channels[c];
            light = mix(light, plane[i], kShare);
        }
    }
}

LitPoint LitHead::at(Vec2 face) const {
    const float x = std::min(std::max((face.x - kLeft) / kStep, 0.0f), kWidth - 1.001f);
    const float y = std::min(std::max((face.y - kTop) / kStep, 0.0f), kHeight - 1.001f);
    const int ix = static_cast<int>(x), iy = static_cast<int>(y);
    const float u = x - static_cast<float>(ix), v = y - static_cast<float>(iy);
    const LitPoint* corner = &m_points[index(ix, iy)];
    const LitPoint &a = corner[0], &b = corner[1], &c = corner[kWidth], &d = corner[kWidth + 1];
    const auto blend = [&](auto part) { return mix(mix(a.*part, b.*part, u), mix(c.*part, d.*part, u), v); };
    LitPoint point;
    point.normal = normalized(blend(&LitPoint::normal));
    point.keyVisible = blend(&LitPoint::keyVisible);
    point.open = blend(&LitPoint::open);
    point.light = blend(&LitPoint::light);
    point.relief = blend(&LitPoint::relief);
    return point;
}

}  // namespace zel::drawing
