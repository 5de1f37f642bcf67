#include "eyePaint.h"

#include "noiseField.h"

namespace zel::drawing {

namespace {

constexpr float kBallRadius = 12.5f;  // mm

Colour paintIris(const Studio& studio, const EyeShape& eye, Vec2 d, float radiusShare) {
    const Sitter& sitter = studio.sitter;
    const float angle = angleOf(d.y, d.x);
    const std::uint32_t seed = sitter.seed * 131u + (eye.side < 0 ? 1u : 2u);
    // Fibres run outwards; noise on a cylinder keeps the seam at angle pi closed.
    const float cx = cosineOf(angle), cy = sineOf(angle);
    const float fibres = smoothNoise(cx * 9 + radiusShare * 1.3f, cy * 9 - radiusShare * 1.3f, seed) +
                         0.7f * smoothNoise(cx * 19, cy * 19 + radiusShare, seed + 1);
    const float collar = smoothStep(0.72f, 0.40f, radiusShare + 0.06f * fibres);
    Colour iris = mix(sitter.irisOuter, sitter.irisInner, collar);
    iris = iris * (1.0f + 0.34f * fibres * visibleShare(0.6f, studio.pixelMm));
    iris = iris * mix(1.0f, 0.30f, smoothStep(0.74f, 1.0f, radiusShare));  // the dark ring at its rim
    // Light enters from the lamp's side and gathers on the far side.
    const Vec3 lamp = studio.lit.lamp();
    const float gathered = -(d.x * lamp.x + d.y * lamp.y) / eye.irisRadius;
    return iris * (1.0f + 0.75f * gathered + 0.15f * radiusShare);
}

/// The lamp as a soft window on the cornea, and a faint second light below it.
Colour reflections(const Studio& studio, Vec2 d, float irisRadius) {
    const Vec3 lamp = studio.lit.lamp();
    const Vec2 at{lamp.x * irisRadius * 0.55f, lamp.y * irisRadius * 0.62f - 0.2f};
    const float half = irisRadius * 0.17f;
    const float dx = std::fabs(d.x - at.x + 0.15f * (d.y - at.y)) - half,
                dy = std::fabs(d.y - at.y) - half * 1.2f;
    const float window = edgeCoverage(-std::max(dx, dy), studio.pixelMm, 0.35f);
    const float low =
        0.06f * bell(d.x, d.y, -at.x * 0.7f, irisRadius * 0.55f, irisRadius * 0.4f, irisRadius * 0.16f);
    return studio.scene.key * (1.15f * window + low);
}

Colour paintWhite(const Studio& studio, const EyeShape& eye, Vec2 p) {
    const float t = eye.t(p.x);
    Colour white = fromSrgb(226, 219, 213) * mix(1.0f, 0.90f, studio.sitter.melanin);
    const std::uint32_t seed = studio.sitter.seed * 57u + (eye.side < 0 ? 3u : 4u);
    const float vein = smoothStep(0.10f, 0.0f, std::fabs(smoothNoise(p.x * 0.5f, p.y * 1.3f, seed)));
    const float reddish = 0.16f * std::fabs(t) * std::fabs(t) + 0.09f * vein * std::fabs(t);
    white = white * Colour{1.0f, 1.0f - reddish, 1.0f - reddish};
    // The red flesh of the inner corner.
    const float flesh = smoothStep(-0.74f, -0.93f, t);
    return mix(white, fromSrgb(196, 128, 116) * mix(1.0f, 0.6f, studio.sitter.melanin), 0.85f * flesh);
}

}  // namespace

EyeSample paintEye(const Studio& studio, const EyeShape& eye, Vec2 p, const LitPoint& point, float shadow) {
    EyeSample sample;
    const float along = eye.t(p.x);
    if (std::fabs(along) > 1.1f || std::fabs(p.y - eye.centre.y) > 16) return sample;
    const float inside = eye.insideBy(p);
    sample.cover = edgeCoverage(inside, studio.pixelMm, 0.25f);
    if (sample.cover <= 0) return sample;

    const Vec2 fromIris = p - eye.iris;
    const float radius = length(fromIris);
    sample.iris = edgeCoverage(eye.irisRadius - radius, studio.pixelMm, 0.7f);
    Colour surface = paintWhite(studio, eye, p);
    if (sample.iris > 0) {
        Colour iris = paintIris(studio, eye, fromIris, radius / eye.irisRadius);
        const float pupil = edgeCoverage(eye.pupilRadius - radius, studio.pixelMm, 0.45f);
        iris = mix(iris, Colour{0.004f, 0.004f, 0.005f}, pupil);
        surface = mix(surface, iris, sample.iris);
    }
    const Vec2 d = (p - eye.centre) * (1.0f / kBallRadius);
    const Vec3 normal = normalized({d.x * 0.8f, d.y * 0.8f, std::sqrt(std::max(0.15f, 1.0f - dot(d, d)))});
    const Scene& scene = studio.scene;
    const float lamp =
        clamp01((dot(normal, studio.lit.lamp()) + 0.25f) / 1.25f) * mix(0.55f, 1.0f, point.keyVisible);
    Colour light = (scene.key * (lamp * 0.95f) + scene.fill + scene.sky * 0.6f) * (1.0f - 0.55f * shadow);
    // The upper lid and its lashes shade the ball; so do the corners.
    const float below = p.y - eye.upperLid(along), above = eye.lowerLid(along) - p.y;
    const float lidShade =
        mix(0.36f, 1.0f, smoothStep(-0.3f, 4.0f, below)) * mix(0.78f, 1.0f, smoothStep(0, 1.6f, above));
    const float cornerShade = mix(1.0f, 0.62f, smoothStep(0.55f, 1.0f, std::fabs(along)));
    sample.colour = surface * light * (lidShade * cornerShade * 0.93f);
    const float wetLine = bell(above, 0.35f, 0.35f) * visibleShare(0.5f, studio.pixelMm);
    sample.colour = sample.colour + scene.key * (0.10f * wetLine * lamp);
    sample.colour =
        sample.colour + reflections(studio, fromIris, eye.irisRadius) * (sample.iris * (1 - 0.5f * shadow));
    return sample;
}

Colour paintLids(const Studio& studio, const EyeShape& eye, Vec2 p, Colour skin) {
    const float along = eye.t(p.x), reach = std::fabs(along);
    if (reach > 1.5f || p.y < eye.centre.y - 24 || p.y > eye.centre.y + 22) return skin;
    const Sitter& sitter = studio.sitter;
    const float inner = std::min(std::max(along, -1.0f), 1.0f);
    const float upper = eye.upperLid(inner), lower = eye.lowerLid(inner), openLid = eye.openUpperLid(inner);
    const float beyond = std::max(0.0f, reach - 1.0f) * eye.halfWidth;  // mm past a corner
    const float fade = smoothStep(1.32f, 0.92f, reach);

    // The crease follows the open lid at a distance; above it lies the socket's soft shade.
    const float creaseY = openLid - mix(2.0f, 4.4f * sitter.crease, 1.0f - inner * inner) - 0.12f * beyond;
    const float over = p.y - creaseY;
    const float crease =
        0.42f * bell(over, 0, 0.75f) + 0.20f * (over < 0 ? bell(over, 0, 3.6f) : bell(over, 0, 1.4f));
    skin = skin *
           mix(Colour{1, 1, 1}, Colour{0.50f, 0.40f, 0.38f}, crease * fade * mix(1.0f, 0.8f, sitter.melanin));

    // The lid's edge with its lashes' roots, above; the wet pink rim and a faint line, below.
    const float liner = mix(1.0f, 0.62f, sitter.masculine);
    const float edge = p.y - upper;
    const float lash = edge < 0.25f ? bell(edge, 0, 1.05f * mix(0.75f, 1.2f, 1 - sitter.masculine)) : 0.0f;
    const float lashFade = smoothStep(1.14f, 0.98f, reach);
    skin = mix(skin, Colour{0.014f, 0.009f, 0.008f}, 0.88f * liner * lash * lashFade);
    const float under = p.y - lower;
    if (under > -0.5f) {
        const float rim = bell(under, 0.45f, 0.7f) * smoothStep(1.06f, 0.85f, reach);
        skin = mix(skin, skin * Colour{1.08f, 0.84f, 0.82f} + Colour{0.012f, 0.006f, 0.005f}, 0.8f * rim);
        skin = skin * (1.0f - 0.26f * bell(under, 1.6f, 0.9f) * fade * liner);
        skin = skin * (1.0f - 0.08f * bell(under, 6.8f, 1.2f) * smoothStep(1.1f, 0.5f, reach));
        skin = skin * (1.0f + 0.05f * bell(under, 4.2f, 1.8f) * smoothStep(1.0f, 0.5f, reach));
    }
    return skin;
}

}  // namespace zel::drawing
