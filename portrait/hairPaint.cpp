#include "hairPaint.h"

#include "browPaint.h"
#include "hairGuides.h"
#include "noiseField.h"
#include "randomSource.h"

namespace zel::drawing {

namespace {

/// How one layer of strands is laid: a broad dark ground first, fine strands over it.
struct Layer {
    float widthMm = 0.3f;
    float brightness = 1;
    float cover = 1;
    float looseness = 1;  // factor on the spread
    float shorten = 0;    // share taken off the tip
};

/// Curve through the points of a strand, in head mm.
Vec3 alongCurve(const std::vector<Vec3>& points, float t) {
    const int count = static_cast<int>(points.size());
    float xs[12], ys[12], zs[12];
    for (int i = 0; i < count; ++i) {
        const Vec3& p = points[static_cast<std::size_t>(i)];
        xs[i] = p.x;
        ys[i] = p.y;
        zs[i] = p.z;
    }
    return {curveThrough(xs, count, t), curveThrough(ys, count, t), curveThrough(zs, count, t)};
}

class HairPainter {
public:
    explicit HairPainter(const Studio& studio)
        : m_studio(studio), m_random(studio.sitter.seed, 31), m_plan(planHair(studio.sitter, studio.shape)) {
        // Strands are as fine as the picture can show, and as many as cover the head at that width.
        const float pixelMm = studio.pixelMm;
        m_strandMm = std::min(std::max(0.19f, 0.62f * pixelMm), 1.2f);
        m_strands = 5200.0f * std::min(2.0f, 0.33f / m_strandMm);
    }

    HairStrokes paint() {
        HairStrokes strokes;
        for (const HairSection& section : m_plan.back) fillSection(section, strokes.back, 0.36f);
        if (m_plan.bun) addBun(strokes.back);
        if (m_plan.patch.amount > 0) fillPatch(strokes.front);
        for (const HairSection& section : m_plan.front) fillSection(section, strokes.front, 1.0f);
        return strokes;
    }

private:
    void fillSection(const HairSection& section, StrokeList& list, float brightness);
    void addStrand(const HairSection& section, float place, const Layer& layer, StrokeList& list);
    void fillPatch(StrokeList& list);
    bool patchRoot(Vec2& root);
    void addPatchStrand(Vec2 root, const Layer& layer, StrokeList& list);
    void addBun(StrokeList& list);
    void stroke(const std::vector<Vec3>& path, const Layer& layer, Colour tint, bool lifted,
                StrokeList& list);
    Colour shade(Vec3 at, Vec3 tangent, Colour tint, float t) const;
    Colour clumpTint(float clump);

    const Studio& m_studio;
    RandomSource m_random;
    HairPlan m_plan;
    float m_strandMm, m_strands;
};

Colour HairPainter::clumpTint(float clump) {
    const float lock = smoothNoise(clump * 7.3f, 3.7f, m_studio.sitter.seed + 5u);
    const float gain = (1.0f + 0.35f * lock) * m_random.range(0.72f, 1.3f);
    return m_studio.sitter.hair * gain;
}

/// Light on a thin cylinder: brightest where light falls across the strand, with a band of shine.
Colour HairPainter::shade(Vec3 at, Vec3 tangent, Colour tint, float t) const {
    const Scene& scene = m_studio.scene;
    const Vec3 lamp = m_studio.lit.lamp(), half = normalized(lamp + m_studio.lit.camera());
    const Vec3 outward = normalized({at.x / 80, (at.y + 15) / 125, 0.55f});
    const float facing = dot(outward, lamp);
    const float across = std::sqrt(std::max(0.0f, 1.0f - square(dot(tangent, lamp))));
    const float gloss = std::sqrt(std::max(0.0f, 1.0f - square(dot(tangent, half))));
    const float lamps = across * clamp01(0.30f + 0.75f * facing);
    const float hidden = mix(0.66f, 1.0f, smoothStep(0.0f, 0.16f, t));
    const float shine = powerOf(gloss, 46) * clamp01(0.2f + facing);
    const Colour light =
        scene.key * lamps + scene.fill * 0.8f + scene.sky * clamp01(0.6f - 0.45f * outward.y);
    return tint * light * hidden + m_studio.sitter.hairSheen * scene.key * (0.20f * shine * hidden);
}

void HairPainter::stroke(const std::vector<Vec3>& path, const Layer& layer, Colour tint, bool lifted,
                         StrokeList& list) {
    std::vector<StrokePoint> points;
    const std::size_t count = path.size();
    const auto place = [&](std::size_t i) {
        Vec3 p = path[i];
        if (lifted) p.z += m_studio.shape.coarseRelief({p.x, p.y});
        return p;
    };
    for (std::size_t i = 0; i < count; ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(count - 1);
        const Vec3 at = place(i);
        const Vec3 tangent = normalized(place(std::min(i + 1, count - 1)) - place(i == 0 ? 0 : i - 1));
        StrokePoint point;
        point.at = m_studio.pose.toPicture(at);
        point.radius =
            0.5f * layer.widthMm * m_studio.pose.pixelsPerMm() * mix(1.0f, 0.25f, smoothStep(0.6f, 1.0f, t));
        point.depth = headDepth(m_studio.pose.toCamera(at).z);
        point.cover = layer.cover * mix(1.0f, 0.55f, smoothStep(0.85f, 1.0f, t));
        point.colour = shade(at, tangent, tint, t) * layer.brightness;
        points.push_back(point);
    }
    list.add(points);
}

void HairPainter::addStrand(const HairSection& section, float place, const Layer& layer, StrokeList& list) {
    const Sitter& sitter = m_studio.sitter;
    const int last = static_cast<int>(section.guides.size()) - 1;
    const float position = place * static_cast<float>(last);
    const int i = std::min(static_cast<int>(position), last - 1);
    const HairGuide *first = section.guides.data() + i, &a = first[0], &b = first[1];
    std::vector<Vec3> control;
    for (std::size_t k = 0; k < a.size(); ++k)
        control.push_back(mix(a[k], b[k], position - static_cast<float>(i)));

    // Strands of one clump drift together.
    constexpr float kClumps = 26;
    const float clump = std::floor(place * kClumps + 0.6f * m_random.uniform());
    const std::uint32_t seed = sitter.seed * 19u + 7u;
    const float driftX = smoothNoise(clump * 3.1f, 0.5f, seed),
                phase = 3.2f * smoothNoise(place * 4.0f, 9.5f, seed);
    const float ownX = m_random.bellShaped() * section.spread * layer.looseness;
    const float ownY = m_random.bellShaped() * section.spread * layer.looseness * 0.7f;
    const float end =
        1.0f - section.ragged * square(m_random.uniform()) - layer.shorten - 0.06f * std::fabs(driftX);
    constexpr int kPoints = 20;
    std::vector<Vec3> path;
    for (int k = 0; k < kPoints; ++k) {
        const float t = end * static_cast<float>(k) / (kPoints - 1);
        Vec3 p = alongCurve(control, t);
        const float free = smoothStep(0.05f, 0.6f, t);
        const float swing = section.wave * free * sineOf(t * 15.0f + phase + 0.02f * p.x);
        p.x += swing + driftX * 5.0f * free * std::min(layer.looseness, 1.0f) + ownX * mix(0.55f, 1.0f, free);
        p.y += ownY;
        p.z += swing * 0.6f + 1.5f * layer.looseness;
        path.push_back(p);
    }
    stroke(path, layer, clumpTint(clump + (control[1].x > 0 ? 40.0f : 0.0f)), true, list);
}

void HairPainter::fillSection(const HairSection& section, StrokeList& list, float brightness) {
    const Layer ground{5.0f, 0.42f * brightness, 1.0f, 0.15f, 0.12f};
    const Layer body{m_strandMm * 2.6f, 0.74f * brightness, 0.9f, 0.8f, 0.02f};
    const Layer fine{m_strandMm, 1.06f * brightness, 0.85f, 1.0f, 0.0f};
    const Layer stray{std::min(0.12f, m_strandMm), 1.15f * brightness, 0.7f, 3.2f, 0.0f};
    const auto lay = [&](const Layer& layer, float count, float from, float to) {
        for (int i = 0; i < static_cast<int>(count * section.share); ++i)
            addStrand(section, mix(from, to, m_random.uniform()), layer, list);
    };
    lay(ground, 300, 0.03f, 0.96f);
    lay(body, 0.22f * m_strands, 0.01f, 0.99f);
    lay(fine, 0.5f * m_strands, 0.0f, 1.0f);
    lay(stray, 90, 0.25f, 1.0f);
    lay(stray, 60, 0.9f, 1.0f);
}

bool HairPainter::patchRoot(Vec2& root) {
    const HairPatch& patch = m_plan.patch;
    const Sitter& sitter = m_studio.sitter;
    const float angle = m_random.range(-kPi, 0.5f);
    // Big hair is widest above the ears and tapers below them.
    const float high = mix(patch.high, std::min(patch.high, 1.03f), smoothStep(-0.35f, 0.5f, angle));
    const float share = std::sqrt(mix(square(patch.low), square(high), m_random.uniform()));
    const float turned = m_random.chance(0.5f) ? angle : -kPi - angle;
    root = FaceShape::kMiddle +
           Vec2{cosineOf(turned), sineOf(turned)} * (m_studio.shape.outlineRadius(turned) * share);
    const float x = std::fabs(root.x), wobble = 2.4f * m_random.bellShaped();
    if (root.y > patch.sideEndY + wobble) return false;
    // Sideburns stay near the ear, everything else above the hairline.
    const float line = hairlineY(sitter, std::min(x, 66.0f)) + patch.overFace + wobble;
    const float inset = m_studio.shape.outlineRadius(0) * 0.945f - 0.10f * (root.y + 5);
    return root.y < line || x > inset + wobble * 0.5f;
}

void HairPainter::addPatchStrand(Vec2 root, const Layer& layer, StrokeList& list) {
    const HairPatch& patch = m_plan.patch;
    Vec2 outward = root - Vec2{0, -20};
    outward = outward * (1.0f / std::max(length(outward), 1.0f));
    const float topness = smoothStep(-40, -90, root.y);
    Vec2 direction = outward * mix(0.35f, 0.8f, topness) + patch.comb +
                     Vec2{0.35f * m_random.bellShaped(), 0.35f * m_random.bellShaped()};
    if (root.y > -45 && patch.comb.y >= 0) direction = direction + Vec2{0, 0.8f};
    direction = direction * (1.0f / std::max(length(direction), 0.2f));
    const float size = patch.lengthMm * m_random.range(0.6f, 1.1f);
    const float lift = 2.0f + 5.0f * topness;
    std::vector<Vec3> path;
    const bool curls = patch.curl > 0;
    const int points = curls ? 22 : patch.lengthMm < 5 ? 3 : 6;
    const float radius = patch.curl * m_random.range(0.6f, 1.25f), phase = m_random.range(0, 2 * kPi);
    const float turns = m_random.range(1.4f, 3.0f), bend = 0.25f * m_random.bellShaped();
    for (int i = 0; i < points; ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(points - 1);
        Vec2 at = root + direction * (size * t) + Vec2{-direction.y, direction.x} * (bend * size * t * t);
        float z = lift * t;
        if (curls) {
            const float angle = phase + turns * 2 * kPi * t;
            at = at + Vec2{cosineOf(angle), 0.85f * sineOf(angle)} * radius;
            z += radius * sineOf(angle + 0.8f) + 4;
        }
        path.push_back({at.x, at.y, z});
    }
    const float clump = std::floor(cloudNoise(root.x / 9, root.y / 9, 2, m_studio.sitter.seed + 77u) * 12.0f);
    stroke(path, layer, clumpTint(clump), true, list);
}

void HairPainter::fillPatch(StrokeList& list) {
    const HairPatch& patch = m_plan.patch;
    const bool curls = patch.curl > 0, shaved = patch.lengthMm < 5;
    const auto lay = [&](const Layer& layer, float count) {
        for (int i = 0; i < static_cast<int>(count * patch.amount); ++i)
            if (Vec2 root; patchRoot(root)) addPatchStrand(root, layer, list);
    };
    if (shaved) {
        lay({3.2f, 0.6f, 0.12f, 1, 0}, 2600);
        lay({0.34f, 0.55f, 0.6f, 1, 0}, 15000);
        return;
    }
    lay({curls ? 5.5f : 1.7f, 0.42f, 0.9f, 1, 0}, curls ? 900 : 3600);
    lay({m_strandMm * (curls ? 2.4f : 2.2f), 0.72f, 0.9f, 1, 0}, (curls ? 0.35f : 0.8f) * m_strands);
    lay({m_strandMm, 1.08f, 0.85f, 1, 0}, (curls ? 0.8f : 1.8f) * m_strands);
}

void HairPainter::addBun(StrokeList& list) {
    const Vec2 middle{0, m_studio.shape.crownY() - 14};
    for (const Layer& layer : {Layer{6, 0.4f, 1, 1, 0}, Layer{m_strandMm * 2, 0.8f, 0.9f, 1, 0},
                               Layer{m_strandMm, 1.0f, 0.85f, 1, 0}}) {
        const int count = layer.widthMm > 3 ? 90 : 900;
        for (int i = 0; i < count; ++i) {
            const float radius = 25 * std::sqrt(m_random.uniform()), start = m_random.range(0, 2 * kPi);
            std::vector<Vec3> path;
            for (int k = 0; k < 12; ++k) {
                const float angle = start + 0.16f * static_cast<float>(k);
                const float swirl = radius * (1.0f + 0.05f * m_random.bellShaped() * 0.3f);
                path.push_back({middle.x + swirl * 1.1f * cosineOf(angle),
                                middle.y + swirl * 0.9f * sineOf(angle), -52 - 0.3f * radius});
            }
            stroke(path, layer, clumpTint(std::floor(radius / 3)), false, list);
        }
    }
}

}  // namespace

HairStrokes drawHair(const Studio& studio) {
    return HairPainter(studio).paint();
}

}  // namespace zel::drawing
