#include "bodyPaint.h"

#include "browPaint.h"
#include "noiseField.h"

namespace zel::drawing {

namespace {

/// Where a pixel lies on the body: mm below and beside the eyes, upright with the room.
struct BodyPlace {
    Vec2 p;
    float fromNeck;   // signed, from the neck's axis
    float fromSpine;  // signed, from the shoulders' middle
    float neckHalf;
    float inside;  // mm inside the body's outline
    float inNeck, inShoulders;
};

float shoulderLine(const Sitter& s, float d) {
    const float width = mix(150.0f, 178.0f, s.masculine);
    const float slope = mix(0.40f, 0.33f, s.masculine);
    return mix(150.0f, 141.0f, s.masculine) + slope * std::max(0.0f, d - 42) +
           0.016f * square(std::max(0.0f, d - width * 0.82f));
}

BodyPlace placeOnBody(const Studio& studio, Vec2 pixel) {
    const Sitter& s = studio.sitter;
    BodyPlace place;
    place.p = (pixel - studio.scene.centre) * studio.pixelMm;
    const Vec2 throat = (studio.pose.toPicture({0, 80, -62}) - studio.scene.centre) * studio.pixelMm;
    const float chinDrop = throat.y - 80;
    const float base = throat.x * 0.45f;
    const float y = place.p.y - chinDrop * 0.7f;
    place.p.y = y;
    place.fromNeck = place.p.x - mix(throat.x, base, smoothStep(70, 175, y));
    place.fromSpine = place.p.x - base;
    const float thick = mix(47.0f, 57.0f, s.masculine) * mix(1.0f, s.faceWidth, 0.6f) +
                        (s.clothing == Clothing::knit ? 2.5f * smoothStep(117.0f, 122.0f, y) : 0.0f);
    place.neckHalf = thick - 3.0f * smoothStep(70, 110, y) + 6.0f * smoothStep(125, 165, y);
    place.inNeck = y > 20 ? place.neckHalf - std::fabs(place.fromNeck) : -50.0f;
    place.inShoulders = (y - shoulderLine(s, std::fabs(place.fromSpine))) * 0.9f;
    // The neck runs into the shoulders in a curve.
    constexpr float kBlend = 16;
    const float h = clamp01(0.5f + 0.5f * (place.inNeck - place.inShoulders) / kBlend);
    place.inside = mix(place.inShoulders, place.inNeck, h) + kBlend * h * (1 - h);
    return place;
}

/// mm below the clothes' upper edge; below 0 on bare skin.
float belowNeckline(const Sitter& s, const BodyPlace& place) {
    const float d = std::fabs(place.fromSpine), y = place.p.y;
    switch (s.clothing) {
        case Clothing::crewNeck:
            return d > 85 ? 40.0f : y - (176 - 22 * square(d / 64));
        case Clothing::vNeck:
            return d > 80 ? 40.0f : (y - (232 - 82 * powerOf(d / 62, 0.85f))) * 0.7f;
        case Clothing::shirtCollar:
            return d > 80 ? 40.0f : (y - (206 - 66 * (d / 46))) * 0.6f;
        case Clothing::knit:
            return y - (119 + 7 * (1 - square(place.fromNeck / place.neckHalf)));
    }
    return 40;
}

Vec3 bodyNormal(const BodyPlace& place) {
    const float turn = std::min(std::max(place.fromNeck / place.neckHalf, -0.98f), 0.98f);
    const Vec3 neck = normalized({turn, 0.10f, std::sqrt(1.0f - turn * turn)});
    const float over = std::max(0.0f, place.inShoulders);
    const Vec3 chest = normalized({place.fromSpine / 330, -0.95f * expOf(-over / 26) - 0.12f, 0.8f});
    return normalized(mix(neck, chest, smoothStep(-14, 12, place.inShoulders)));
}

float ribbed(float across, float period, float pixelMm) {
    return 1.0f -
           0.16f * (0.5f + 0.5f * sineOf(across * 2 * kPi / period)) * visibleShare(period * 0.5f, pixelMm);
}

/// The two flaps of a shirt's collar: mm inside, below 0 beside them.
float insideCollar(const BodyPlace& place) {
    const float d = std::fabs(place.fromSpine), y = place.p.y;
    const float top = y - (150 - 0.55f * (d - 20)), inner = d - (46 - (y - 140) * 0.42f),
                outer = (72 - (y - 140) * 0.28f) - d;
    const float low = (212 - 0.62f * (d - 20)) - y;
    return std::min(std::min(top, inner), std::min(outer, low));
}

Colour paintCloth(const Studio& studio, const BodyPlace& place, float below, float keyVisible, float open) {
    const Sitter& s = studio.sitter;
    const Vec2 p = place.p;
    const std::uint32_t seed = s.seed * 53u + 3u;
    // Folds hang from the shoulders.
    const float lean = place.fromSpine, slant = p.y + 0.55f * std::fabs(place.fromSpine);
    const auto folds = [&](float x, float y) { return cloudNoise(x / 62, y / 84, 3, seed); };
    const float here = folds(lean, slant);
    Vec3 normal = bodyNormal(place);
    normal.x -= 3.4f * (folds(lean + 4, slant) - here);
    normal.y -= 3.4f * (folds(lean, slant + 4) - here);
    normal = normalized(normal);
    Colour cloth = s.cloth;
    const float thread = visibleShare(1.2f, studio.pixelMm);
    if (s.clothing == Clothing::knit) {
        const float row = sineOf(p.y * 2 * kPi / 3.4f + 1.2f * sineOf(p.x * 2 * kPi / 4.2f));
        cloth = cloth * (1.0f + 0.13f * row * visibleShare(1.7f, studio.pixelMm));
        cloth = cloth * ribbed(place.fromNeck, 5.5f, studio.pixelMm);
    } else if (s.clothing != Clothing::shirtCollar && below < 13) {
        cloth = cloth *
                ribbed(place.fromSpine + 0.4f * p.y * (place.fromSpine > 0 ? 1.0f : -1.0f), 2.8f,
                       studio.pixelMm) *
                0.96f;
    }
    cloth = cloth * (1.0f + 0.10f * thread * smoothNoise(p.x * 1.1f, p.y * 2.3f, seed + 9) + 0.05f * here);
    const float seam = s.clothing == Clothing::knit ? 0.0f : bell(below, 13.5f, 0.9f);
    const float rim = smoothStep(0.0f, 2.2f, below);  // the edge's own thickness
    open *= mix(0.72f, 1.0f, rim) * (1 - 0.35f * seam);
    if (s.clothing == Clothing::shirtCollar) {
        const float collar = insideCollar(place);
        if (collar > 0) {
            normal = normalized(normal + Vec3{0, -0.25f, 0.1f});
            open = mix(0.85f, 1.12f, smoothStep(0, 1.5f, collar));
        } else {
            open *= mix(0.62f, 1.0f, smoothStep(0, 7, -collar));
            const float button = length(Vec2{place.fromSpine, p.y - 240});
            cloth = cloth * (1 - 0.35f * edgeCoverage(4.5f - button, studio.pixelMm, 0.6f)) *
                    (1 - 0.3f * bell(place.fromSpine, 11, 0.8f));
        }
    }
    const Scene& scene = studio.scene;
    const float lamp = clamp01((dot(normal, scene.keyDirection) + 0.1f) / 1.1f) * keyVisible;
    return cloth * (scene.key * lamp + scene.fill * (clamp01(normal.z) * open) +
                    scene.sky * ((0.55f - 0.45f * normal.y) * open));
}

}  // namespace

BodySample paintBody(const Studio& studio, Vec2 pixel, float hairShadow) {
    BodySample sample;
    const BodyPlace place = placeOnBody(studio, pixel);
    sample.cover = edgeCoverage(place.inside, studio.pixelMm, 0.5f);
    if (sample.cover <= 0) return sample;
    sample.depth =
        headDepth(-58 + 24 * smoothStep(0, 45, place.inside) * smoothStep(20, -20, place.inShoulders) - 4);

    // The head keeps the lamp from whatever lies behind it as seen from there.
    const Vec3 lamp = studio.scene.keyDirection;
    const float scale = studio.pose.pixelsPerMm();
    const float near = studio.shape.polar(studio.pose.toFace(pixel)).distance;
    const Vec2 towards = pixel + Vec2{lamp.x, lamp.y} * (46 * scale);
    const float shadowed = studio.shape.polar(studio.pose.toFace(towards)).distance;
    const float keyVisible =
        smoothStep(-16, 14, shadowed) * smoothStep(-2, 26, near) * (1 - 0.6f * hairShadow);
    const float open = mix(0.42f, 1.0f, smoothStep(-4, 62, near)) * (1 - 0.4f * hairShadow);

    Vec3 normal = bodyNormal(place);
    // Two cords run from behind the ears to the pit of the throat; the collarbones start beside it.
    const float d = std::fabs(place.fromNeck), along = smoothStep(80, 172, place.p.y);
    const float cord = d - mix(46.0f, 9.0f, along);
    normal.x += 0.22f * (place.fromNeck > 0 ? 1.0f : -1.0f) * cord / 7 * bell(cord, 0, 8) *
                smoothStep(80, 110, place.p.y);
    const float bone = place.p.y - (184 - 0.10f * std::fabs(place.fromSpine));
    normal.y += 0.30f * bone / 6 * bell(bone, 0, 7) * smoothStep(8, 22, std::fabs(place.fromSpine));
    const float pit = bell(place.fromSpine, place.p.y, 0, 180, 9, 8);
    const Colour skin =
        shadePlainSkin(studio, place.p, normalized(normal), keyVisible, open * (1 - 0.35f * pit), 0.12f);

    const float below = belowNeckline(studio.sitter, place);
    const bool collar = studio.sitter.clothing == Clothing::shirtCollar;
    const float clothInside = collar ? std::max(below, insideCollar(place)) : below;
    const float cloth = edgeCoverage(clothInside, studio.pixelMm, 0.3f);
    const float edgeShade = 1 - 0.42f * expOf(std::min(0.0f, clothInside) / 4.5f);
    sample.skin = 1 - cloth;
    sample.colour = skin * edgeShade;
    if (cloth > 0)
        sample.colour = mix(sample.colour, paintCloth(studio, place, below, keyVisible, open), cloth);
    return sample;
}

namespace {

/// Height of the ear's folds at (u, v), both -1 to 1: u outwards, v down.
float earRelief(float u, float v) {
    const float shape = 1.0f - 0.24f * v;
    const float r = std::sqrt(square(u / shape) + v * v);
    float z = 3.6f * bell(r, 0.86f, 0.13f) * smoothStep(0.75f, 0.2f, v);  // outer rim
    const float inner = std::sqrt(square((u + 0.30f) / 0.95f) + square(v + 0.02f));
    z += 2.8f * bell(inner, 0.56f, 0.13f) * smoothStep(-0.62f, -0.2f, u + 0.2f * v);  // inner fold
    z -= 4.2f * bell(u, v, -0.32f, 0.10f, 0.34f, 0.28f);                              // bowl
    z += 2.2f * bell(u, v, -0.72f, 0.18f, 0.2f, 0.16f);                               // flap before the bowl
    z += 1.5f * bell(u, v, -0.25f, 0.78f, 0.4f, 0.22f);                               // lobe
    return z;
}

}  // namespace

BodySample paintEar(const Studio& studio, float side, Vec2 pixel, float hairShadow) {
    BodySample sample;
    const Vec2 ear = studio.shape.earCentre;
    const Vec3 at{side * ear.x, ear.y, -44};
    const Vec2 d = studio.pose.toUpright(pixel) - studio.pose.toUpright(studio.pose.toPicture(at));
    // Turned towards the camera an ear shows broad, turned away it vanishes behind the cheek.
    const float broad = std::min(std::max(1.0f - side * 1.5f * studio.pose.sineYaw(), 0.3f), 1.5f);
    const float half = studio.shape.earHalf.x * broad, tall = studio.shape.earHalf.y;
    const float v = d.y / tall;
    const float u = d.x * side / half + 0.22f * v;
    if (std::fabs(u) > 1.4f || std::fabs(v) > 1.15f) return sample;
    const float shape = 1.0f - 0.24f * v;
    const float inside = (1.0f - std::sqrt(square(u / shape) + v * v)) * std::min(half, tall);
    sample.cover = edgeCoverage(inside, studio.pixelMm, 0.3f);
    if (sample.cover <= 0) return sample;
    constexpr float kDelta = 0.03f;
    const float z = earRelief(u, v);
    const float slopeU = (earRelief(u + kDelta, v) - z) / (kDelta * half),
                slopeV = (earRelief(u, v + kDelta) - z) / (kDelta * tall);
    const Vec3 own =
        normalized({side * (0.35f + 0.5f * smoothStep(0.3f, 0, inside / half)) - side * slopeU, -slopeV, 1});
    const Vec3 normal = studio.pose.toCamera(own);
    const float hollow = bell(u, v, -0.34f, 0.08f, 0.36f, 0.30f);
    const float open =
        (1 - 0.62f * hollow) * mix(0.72f, 1.0f, smoothStep(-0.9f, -0.3f, u)) * (1 - 0.4f * hairShadow);
    // The head hides the lamp from the ear on its far side.
    const float lampSide = side * studio.scene.keyDirection.x;
    const float keyVisible =
        smoothStep(-0.45f, 0.05f, lampSide) * (1 - 0.55f * hollow) * (1 - 0.6f * hairShadow);
    sample.colour = shadePlainSkin(studio, d, normal, keyVisible, open, 0.75f);
    sample.skin = 1;
    sample.depth = headDepth(studio.pose.toCamera(at).z + z);
    return sample;
}

}  // namespace zel::drawing
