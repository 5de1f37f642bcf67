#include "background.h"

#include "planeBlur.h"
#include "randomSource.h"
#include "rowWorkers.h"

namespace zel::drawing {

Background::Background(const Scene& scene) {
    const float blur = 0.028f * scene.defocus * static_cast<float>(std::min(scene.width, scene.height));
    m_factor = std::min(std::max(static_cast<int>(blur / 5.0f), 1), 6);
    m_width = (scene.width + m_factor - 1) / m_factor;
    m_height = (scene.height + m_factor - 1) / m_factor;
    for (std::vector<float>& plane : m_planes)
        plane.resize(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height));
    draw(scene);
    const int radius = static_cast<int>(blur / static_cast<float>(m_factor) * 0.6f + 0.5f);
    for (int i = 0; i < 3; ++i) softenPlane(m_planes[i], m_width, m_height, radius);
    if (scene.background == BackgroundKind::streetLights) addLights(scene);
}

void Background::draw(const Scene& scene) {
    const float unit = 1.0f / static_cast<float>(scene.height);
    forRowBands(m_height, [&](int begin, int end) {
        for (int row = begin; row < end; ++row)
            for (int column = 0; column < m_width; ++column) {
                const float px = (static_cast<float>(column) + 0.5f) * static_cast<float>(m_factor);
                const float py = (static_cast<float>(row) + 0.5f) * static_cast<float>(m_factor);
                const Scenery sample =
                    sceneryAt(scene.background, scene.seed,
                              (px - 0.5f * static_cast<float>(scene.width)) * unit, py * unit);
                const std::size_t i = static_cast<std::size_t>(row) * static_cast<std::size_t>(m_width) +
                                      static_cast<std::size_t>(column);
                m_planes[0][i] = sample.colour.x;
                m_planes[1][i] = sample.colour.y;
                m_planes[2][i] = sample.colour.z;
                m_planes[3][i] = sample.depth;
            }
    });
}

/// Points of light that the lens has spread into discs.
void Background::addLights(const Scene& scene) {
    RandomSource random(scene.seed, 41);
    const auto height = static_cast<float>(m_height);
    const Colour kTints[] = {{1.0f, 0.62f, 0.28f},
                             {1.0f, 0.80f, 0.55f},
                             {0.95f, 0.95f, 1.0f},
                             {1.0f, 0.25f, 0.16f},
                             {0.35f, 0.75f, 0.55f}};
    for (int i = 0; i < 70; ++i) {
        const float x = random.uniform() * static_cast<float>(m_width),
                    y = height * (0.08f + 0.62f * random.uniform());
        const float spread = (0.004f + 0.040f * scene.defocus) * height * random.range(0.5f, 1.15f);
        const Colour tint = kTints[random.below(5)] * random.range(0.12f, 0.75f);
        const int reach = static_cast<int>(spread) + 2;
        for (int row = std::max(0, static_cast<int>(y) - reach);
             row < std::min(m_height, static_cast<int>(y) + reach + 1); ++row)
            for (int column = std::max(0, static_cast<int>(x) - reach);
                 column < std::min(m_width, static_cast<int>(x) + reach + 1); ++column) {
                const float distance =
                    length(Vec2{static_cast<float>(column) + 0.5f - x, static_cast<float>(row) + 0.5f - y});
                const float cover = clamp01((spread - distance) * 0.6f + 0.5f) *
                                    (0.75f + 0.35f * smoothStep(0.6f, 1.0f, distance / spread));
                const std::size_t k = static_cast<std::size_t>(row) * static_cast<std::size_t>(m_width) +
                                      static_cast<std::size_t>(column);
                m_planes[0][k] += cover * tint.x;
                m_planes[1][k] += cover * tint.y;
                m_planes[2][k] += cover * tint.z;
            }
    }
}

Colour Background::colourAt(int x, int y) const {
    const float fx = std::max(0.0f, (static_cast<float>(x) + 0.5f) / static_cast<float>(m_factor) - 0.5f);
    const float fy = std::max(0.0f, (static_cast<float>(y) + 0.5f) / static_cast<float>(m_factor) - 0.5f);
    const int x0 = std::min(static_cast<int>(fx), m_width - 1),
              y0 = std::min(static_cast<int>(fy), m_height - 1);
    const int x1 = std::min(x0 + 1, m_width - 1), y1 = std::min(y0 + 1, m_height - 1);
    const float u = fx - static_cast<float>(x0), v = fy - static_cast<float>(y0);
    const auto blend = [&](const std::vector<float>& plane) {
        const float* top = plane.data() + static_cast<std::size_t>(y0) * static_cast<std::size_t>(m_width);
        const float* bottom = plane.data() + static_cast<std::size_t>(y1) * static_cast<std::size_t>(m_width);
        return mix(mix(top[x0], top[x1], u), mix(bottom[x0], bottom[x1], u), v);
    };
    return {blend(m_planes[0]), blend(m_planes[1]), blend(m_planes[2])};
}

float Background::depthAt(int x, int y) const {
    return m_planes[3][static_cast<std::size_t>(y / m_factor) * static_cast<std::size_t>(m_width) +
                       static_cast<std::size_t>(x / m_factor)];
}

}  // namespace zel::drawing
