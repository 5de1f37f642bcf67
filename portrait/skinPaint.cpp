#include "skinPaint.h"

#include "noiseField.h"

namespace zel::drawing {

namespace {

enum Texture : std::uint32_t { kBlotches = 11, kMottle, kPores, kBristles, kSheen, kNeck };

std::uint32_t textureSeed(const Studio& studio, Texture texture) {
    return studio.sitter.seed * 977u + texture;
}

/// 0 to 1: how much blood shows.
float flushAt(const FaceShape& shape, Vec2 p) {
    const float x = std::fabs(p.x);
    float flush = 0.85f * bell(x, p.y, 40, 31, 19, 16);
    flush += 0.75f * bell(p.x, p.y, 0, shape.nose.tipY + 3, 13, 10) +
             0.4f * bell(x, p.y, 14, shape.nose.wingY, 8, 8);
    flush += 0.3f * bell(p.x, p.y, 0, shape.chinY() - 12, 16, 10);
    flush += 0.25f * bell(x, p.y, 31, 0, 17, 10);
    return flush;
}

/// 0 to 1: where a beard grows.
float beardAt(const FaceShape& shape, Vec2 p) {
    const float x = std::fabs(p.x);
    const float cheekLine = mix(46.0f, 8.0f, smoothStep(30, 68, x));
    float beard = smoothStep(cheekLine - 6, cheekLine + 12, p.y);
    beard *= 1.0f - 0.75f * bell(p.x, p.y, 0, shape.nose.baseY + 6, 9, 5);
    beard *= 1.0f - 0.8f * bell(x, p.y, 30, shape.mouth.centreY - 9, 8, 12);
    return beard * smoothStep(shape.nose.baseY - 2, shape.nose.baseY + 6, p.y + smoothStep(20, 45, x) * 40);
}

Colour tintBlood(Colour skin, float amount) {
    return skin * Colour{1.0f + 0.03f * amount, 1.0f - 0.20f * amount, 1.0f - 0.17f * amount};
}

Colour addStubble(const Studio& studio, Vec2 p, Colour skin) {
    const float growth = studio.sitter.stubble * beardAt(studio.shape, p);
    if (growth <= 0.01f) return skin;
    constexpr float kSpacing = 1.05f;  // mm between hairs
    const float hair =
        smoothStep(0.34f, 0.12f, cellNoise(p.x / kSpacing, p.y / kSpacing, textureSeed(studio, kBristles)));
    const float patchy = 1.0f + 0.35f * cloudNoise(p.x / 9, p.y / 9, 2, textureSeed(studio, kBlotches));
    const float shows = visibleShare(kSpacing, studio.pixelMm);
    const float cover = growth * patchy * mix(0.30f, 0.20f + 0.38f * hair, shows);
    return mix(skin, studio.sitter.browHair * 0.8f + Colour{0.004f, 0.006f, 0.01f}, clamp01(cover));
}

float poreDepth(const Studio& studio, Vec2 p) {
    const float x = std::fabs(p.x);
    const float coarse = 0.5f + 0.8f * bell(x, p.y, 22, 28, 20, 18) + 0.7f * bell(p.x, p.y, 0, 32, 14, 20) +
                         0.35f * bell(p.x, p.y, 0, -40, 40, 18);
    constexpr float kSpacing = 1.15f;
    const float pore =
        smoothStep(0.42f, 0.1f, cellNoise(p.x / kSpacing, p.y / kSpacing, textureSeed(studio, kPores)));
    return coarse * pore * visibleShare(kSpacing * 0.6f, studio.pixelMm);
}

}  // namespace

Colour skinReflectance(const Studio& studio, Vec2 p) {
    const Sitter& sitter = studio.sitter;
    const float lightSkin = 1.0f - 0.65f * sitter.melanin;
    const float blotch = cloudNoise(p.x / 21, p.y / 21, 3, textureSeed(studio, kBlotches));
    const float mottle = cloudNoise(p.x / 2.6f, p.y / 2.6f, 3, textureSeed(studio, kMottle));
    const float flush = flushAt(studio.shape, p) * mix(0.45f, 1.25f, sitter.flush);
    Colour skin = tintBlood(sitter.skin, lightSkin * (flush + 0.32f * blotch + 0.20f * mottle));
    skin = skin * (1.0f + 0.035f * blotch - 0.05f * mottle * visibleShare(2.0f, studio.pixelMm));

    // Thin skin about the eyes; dark skin is darker there and on the forehead's rim.
    const float x = std::fabs(p.x), eyeX = studio.shape.eyes[1].centre.x;
    const float orbit = bell(x, p.y, eyeX, 1, 21, 13);
    skin = skin * mix(Colour{1, 1, 1}, Colour{0.93f, 0.865f, 0.87f}, orbit * mix(0.8f, 1.4f, sitter.melanin));
    const float rim =
        bell(x, p.y, 60, -45, 22, 26) + 0.6f * bell(x, p.y, 22, studio.shape.mouth.centreY, 12, 14);
    skin = skin * (1.0f - 0.10f * sitter.melanin * rim);
    skin = addStubble(studio, p, skin);
    return skin * (1.0f - 0.055f * poreDepth(studio, p));
}

namespace {

/// Shine of a surface film: a broad sheen and a tight one, stronger at grazing angles.
float sheen(Vec3 normal, Vec3 lamp, Vec3 camera, float tightness) {
    const float facing = clamp01(dot(normal, normalized(lamp + camera)));
    const float grazing = powerOf(1.0f - clamp01(dot(normal, camera)), 4.0f);
    return 0.35f * powerOf(facing, tightness * 0.25f) + powerOf(facing, tightness) + 0.25f * grazing;
}

float oilAt(const FaceShape& shape, Vec2 p) {
    const float x = std::fabs(p.x);
    return 0.45f + 0.75f * bell(p.x, p.y, 0, -42, 34, 20) + 0.8f * bell(p.x, p.y, 0, 22, 8, 24) +
           0.7f * bell(p.x, p.y, 0, shape.nose.tipY, 9, 8) + 0.5f * bell(x, p.y, 45, 18, 15, 11) +
           0.35f * bell(p.x, p.y, 0, shape.chinY() - 12, 14, 9);
}

}  // namespace

Colour shadeSkin(const Studio& studio, const LitPoint& point, Vec2 p, Colour reflectance, float shadow,
                 float gloss) {
    const float shaded = 1.0f - 0.62f * shadow;
    Colour light = point.light * shaded;
    // Where light is weak it has come through flesh: shadows turn warm.
    const float dim = 1.0f - clamp01(luminance(light) * 1.6f);
    light = light * Colour{1.0f + 0.16f * dim, 1.0f - 0.02f * dim, 1.0f - 0.10f * dim};

    constexpr float kGrain = 0.75f;  // mm, the skin's own fine relief
    const float amplitude = 0.08f * visibleShare(kGrain, studio.pixelMm);
    Vec3 normal = point.normal;
    if (amplitude > 0) {
        const std::uint32_t seed = textureSeed(studio, kSheen);
        normal.x += amplitude * smoothNoise(p.x / kGrain, p.y / kGrain, seed);
        normal.y += amplitude * smoothNoise(p.x / kGrain, p.y / kGrain, seed + 1);
        normal = normalized(normal);
    }
    const float broken = 1.0f + 0.5f * cloudNoise(p.x / 1.7f, p.y / 1.7f, 2, textureSeed(studio, kSheen) + 2);
    const float oil = oilAt(studio.shape, p) * mix(0.55f, 1.35f, studio.sitter.oil) * gloss;
    const float shine =
        sheen(normal, studio.lit.lamp(), studio.lit.camera(), 22) * point.keyVisible * shaded * broken;
    const Colour film = studio.scene.key * (0.17f * oil * shine) +
                        studio.scene.sky * (0.05f * oil * point.open * clamp01(0.4f - normal.y));
    return reflectance * light + film;
}

Colour shadePlainSkin(const Studio& studio, Vec2 texture, Vec3 normal, float keyVisible, float open,
                      float redness) {
    const Scene& scene = studio.scene;
    const float blotch = cloudNoise(texture.x / 16, texture.y / 16, 4, textureSeed(studio, kNeck));
    const float lightSkin = 1.0f - 0.65f * studio.sitter.melanin;
    const Colour skin =
        tintBlood(studio.sitter.skin, lightSkin * (redness + 0.3f * blotch)) * (1.0f + 0.04f * blotch);
    const float lamp = clamp01((dot(normal, scene.keyDirection) + 0.15f) / 1.15f) * keyVisible;
    Colour light = scene.key * lamp + scene.fill * (clamp01(normal.z) * open) +
                   scene.sky * ((0.55f - 0.45f * normal.y) * open);
    const float dim = 1.0f - clamp01(luminance(light) * 1.6f);
    light = light * Colour{1.0f + 0.18f * dim, 1.0f - 0.03f * dim, 1.0f - 0.12f * dim};
    const float shine = sheen(normal, scene.keyDirection, {0, 0, 1}, 14) * keyVisible * open;
    return skin * light + scene.key * (0.02f * shine);
}

}  // namespace zel::drawing
