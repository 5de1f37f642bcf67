#include "noiseField.h"
#include "skinPaint.h"

namespace zel::drawing {

float paintLips(const Studio& studio, Vec2 p, Colour& reflectance, float& gloss) {
    const MouthShape& mouth = studio.shape.mouth;
    if (std::fabs(p.y - mouth.centreY) > 25 || std::fabs(p.x) > mouth.halfWidth + 3) return 0;
    const float inside = mouth.insideBy(p);
    // The red of the lips fades into the skin over a millimetre; lipstick ends more sharply.
    const Sitter& sitter = studio.sitter;
    const float cover = edgeCoverage(inside, studio.pixelMm, mix(1.3f, 0.6f, sitter.lipstick));
    if (cover <= 0) return 0;
    const Colour skin = sitter.skin;
    const Colour light{skin.x * 0.80f, skin.y * 0.54f, skin.z * 0.60f};
    const Colour dark{skin.x * 0.88f, skin.y * 0.66f, skin.z * 0.78f};
    Colour lips = mix(light, dark, sitter.melanin);
    const float masculine = 0.25f * sitter.masculine * (1 - sitter.lipstick);
    lips = mix(lips, skin * Colour{0.86f, 0.68f, 0.68f}, masculine);
    lips = mix(lips, sitter.lipTint, 0.72f * sitter.lipstick);

    // Fine furrows fan out from the middle; towards the wet line the lips are darker and redder.
    const float t = p.x / mouth.halfWidth, line = mouth.line(t);
    const float fan = p.x * (1.0f + 0.012f * std::fabs(p.y - line));
    const float furrow = smoothNoise(fan * 0.95f, (p.y - line) * 0.09f, sitter.seed * 31u + 5u) +
                         0.6f * smoothNoise(fan * 2.3f, (p.y - line) * 0.2f, sitter.seed * 31u + 6u);
    lips = lips * (1.0f + 0.10f * furrow * visibleShare(0.7f, studio.pixelMm));
    const float wet = bell(p.y, line, 2.4f);
    lips = lips * mix(Colour{1, 1, 1}, Colour{0.74f, 0.58f, 0.60f}, wet);
    if (p.y < line) lips = lips * 0.9f;
    reflectance = mix(reflectance, lips, cover * 0.93f);
    const float moist = p.y > line ? 1.9f : 1.1f;
    gloss = mix(gloss, moist * (1.0f + 0.7f * sitter.lipstick) * (1.0f + 0.25f * furrow), cover);
    return cover;
}

Colour paintOpenings(const Studio& studio, Vec2 p, Colour skin) {
    const MouthShape& mouth = studio.shape.mouth;
    const NoseShape& nose = studio.shape.nose;
    const float t = p.x / mouth.halfWidth;
    if (std::fabs(p.y - mouth.centreY) < 12 && std::fabs(t) < 1.12f) {
        const float off = std::fabs(p.y - mouth.line(t));
        const float width = mouth.gap * 0.5f + 0.75f * (1.0f - 0.35f * t * t);
        const float ends = smoothStep(1.04f, 0.72f, std::fabs(t));
        const float dark =
            ends * (0.80f * edgeCoverage(width - off, studio.pixelMm, 1.0f) + 0.32f * bell(off, 0, 2.2f));
        skin =
            mix(skin, Colour{0.035f, 0.012f, 0.011f} * (0.4f + luminance(studio.sitter.skin)), clamp01(dark));
    }
    const float side = p.x < 0 ? -1.0f : 1.0f;
    const Vec2 d = p - Vec2{side * nose.wingX * 0.48f, nose.baseY - 1.3f};
    if (std::fabs(d.x) < 10 && std::fabs(d.y) < 8) {
        // The opening rises towards the nose's middle.
        const float along = (d.x * side + d.y * 0.35f) / (nose.wingX * 0.29f),
                    across = (d.y - d.x * side * 0.30f) / 1.75f;
        const float hole = 1.0f - std::sqrt(along * along + across * across);
        const float cover = smoothStep(-0.55f, 0.55f, hole);
        skin = mix(skin, Colour{0.030f, 0.010f, 0.008f} * (0.35f + luminance(studio.sitter.skin)),
                   0.93f * cover);
    }
    return skin;
}

}  // namespace zel::drawing
