#include "develop.h"

#include "randomSource.h"

namespace zel::drawing {

namespace {

constexpr float kBrightest = 2.0f;  // linear value at the tone curve's end

/// Straight up to the shoulder, then bending towards white, as film and cameras do.
float toneCurve(float v) {
    constexpr float kShoulder = 0.62f, kRoom = 1.0f - kShoulder;
    if (v > kShoulder) v = kShoulder + kRoom * (1.0f - expOf(-(v - kShoulder) / kRoom));
    const float encoded = v <= 0.0031308f ? 12.92f * v : 1.055f * powerOf(v, 1.0f / 2.4f) - 0.055f;
    // A little more contrast about the middle.
    return mix(encoded, smoothStep(0, 1, encoded), 0.16f);
}

}  // namespace

Developer::Developer(const Scene& scene) : m_scene(scene) {
    for (int i = 0; i <= kSteps; ++i) {
        // Steps grow with the square, so that dark tones have many.
        const float root = static_cast<float>(i) / kSteps;
        m_curve[static_cast<std::size_t>(i)] = 255.0f * toneCurve(kBrightest * root * root);
    }
}

float Developer::encoded(float linear) const {
    const float position = std::sqrt(clamp01(linear / kBrightest)) * kSteps;
    const int i = std::min(static_cast<int>(position), kSteps - 1);
    const auto k = static_cast<std::size_t>(i);
    return mix(m_curve[k], m_curve[k + 1], position - static_cast<float>(i));
}

void Developer::develop(Colour colour, int x, int y, unsigned char* rgba) const {
    const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(m_scene.width) - 0.5f;
    const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(m_scene.height) - 0.5f;
    const float vignette = 1.0f - 0.42f * (u * u + v * v);
    const Colour exposed = colour * (m_scene.exposure * vignette);
    const float values[3] = {encoded(exposed.x), encoded(exposed.y), encoded(exposed.z)};
    const std::uint32_t h = latticeHash(x, y, m_scene.seed + 91u);
    const auto grain = [&](std::uint32_t salt) {
        const std::uint32_t g = latticeHash(static_cast<int>(h), static_cast<int>(salt), 7u);
        return static_cast<float>((g & 0xFF) + ((g >> 8) & 0xFF) + ((g >> 16) & 0xFF) + (g >> 24)) *
                   (1.0f / 148.0f) -
               3.446f;
    };
    const float common = grain(1);
    for (std::uint32_t c = 0; c < 3; ++c) {
        // Noise is strongest in the darks; one part of it is common to the channels.
        const float sigma = m_scene.noise * (9.0f - 0.022f * values[c]);
        const float noisy = values[c] + sigma * (0.75f * common + 0.5f * grain(c + 2));
        rgba[c] = static_cast<unsigned char>(std::min(std::max(noisy + 0.5f, 0.0f), 255.0f));
    }
    rgba[3] = 255;
}

}  // namespace zel::drawing
