#include "browPaint.h"

#include "randomSource.h"

namespace zel::drawing {

namespace {

/// A tapering hair from `root` that starts along `direction` and bends by `bend` mm at its tip.
void addHair(const Studio& studio, StrokeList& list, Vec2 root, Vec2 direction, float lengthMm, float bend,
             float widthMm, Colour colour, float cover) {
    constexpr int kPoints = 6;
    std::vector<StrokePoint> points;
    const Vec2 across{-direction.y, direction.x};
    for (int i = 0; i < kPoints; ++i) {
        const float t = static_cast<float>(i) / (kPoints - 1);
        const Vec2 at = root + direction * (lengthMm * t) + across * (bend * t * t);
        StrokePoint point;
        point.at = studio.pose.toPicture(at);
        point.radius = 0.5f * widthMm * studio.pose.pixelsPerMm() * mix(1.0f, 0.3f, t * t);
        point.depth = headDepth(studio.pose.toCamera({at.x, at.y, studio.shape.coarseRelief(at)}).z);
        point.cover = cover * (1.0f - 0.6f * t * t);
        point.colour = colour;
        points.push_back(point);
    }
    list.add(points);
}

void drawBrow(const Studio& studio, const BrowShape& brow, RandomSource& random, StrokeList& list) {
    const Sitter& sitter = studio.sitter;
    const int kHairs = static_cast<int>(430 * mix(0.75f, 1.15f, sitter.browThickness - 0.5f));
    for (int i = 0; i < kHairs; ++i) {
        const float t = powerOf(random.uniform(), 0.92f), level = random.range(-1, 1);
        const float ragged = mix(0.94f, 0.80f, level * level) + 0.10f * random.bellShaped();
        const Vec2 root{brow.x(t), brow.y(t) + level * brow.half(t) * ragged + 0.8f};
        // Hairs stand up at the inner end, then lie along the brow; those above lean down, those below up.
        const float upright = smoothStep(0.34f, 0.0f, t);
        const float lean =
            mix(-0.30f - 0.34f * level, -0.1f, smoothStep(0.6f, 1.0f, t)) + 0.30f * smoothStep(0.5f, 1, t);
        Vec2 direction{brow.side * mix(1.0f, 0.40f, upright),
                       mix(lean, -1.0f, upright) + 0.14f * random.bellShaped()};
        direction = direction * (1.0f / length(direction));
        const float hair =
            mix(7.6f, 5.2f, t) * random.range(0.7f, 1.15f) * mix(0.9f, 1.15f, sitter.masculine);
        const float shade = random.range(0.65f, 1.35f);
        // Light on the brow as on the skin below it.
        const LitPoint lit = studio.lit.at(root);
        const Colour colour = sitter.browHair * lit.light * shade;
        const float thin = smoothStep(0, 0.10f, t) * mix(1.0f, 0.8f, t);
        addHair(studio, list, root, direction, hair, brow.side * random.range(-0.2f, 1.3f), 0.34f, colour,
                0.62f * thin + 0.1f);
    }
}

/// Soft tone under the hairs, which alone would look drawn on.
void toneBrow(const Studio& studio, const BrowShape& brow, StrokeList& list) {
    constexpr int kSteps = 26, kRows = 5;
    for (int row = 0; row < kRows; ++row) {
        const float level = (static_cast<float>(row) / (kRows - 1) - 0.5f) * 1.15f;
        std::vector<StrokePoint> points;
        for (int i = 0; i <= kSteps; ++i) {
            const float t = mix(0.02f, 0.97f, static_cast<float>(i) / kSteps);
            const Vec2 at{brow.x(t), brow.y(t) + 0.7f + level * brow.half(t)};
            StrokePoint point;
            point.at = studio.pose.toPicture(at);
            point.radius = brow.half(t) * 0.42f * studio.pose.pixelsPerMm();
            point.depth = headDepth(studio.pose.toCamera({at.x, at.y, studio.shape.coarseRelief(at)}).z);
            point.cover = 0.22f * smoothStep(0, 0.2f, t);
            point.colour = studio.sitter.browHair * studio.lit.at(at).light * 1.1f;
            points.push_back(point);
        }
        list.add(points);
    }
}

void drawUpperLashes(const Studio& studio, const EyeShape& eye, RandomSource& random, StrokeList& list) {
    const float feminine = 1.0f - studio.sitter.masculine;
    const int kLashes = static_cast<int>(mix(52.0f, 84.0f, feminine));
    for (int i = 0; i < kLashes; ++i) {
        const float t =
            mix(-0.9f, 1.0f, (static_cast<float>(i) + random.uniform()) / static_cast<float>(kLashes));
        const Vec2 root{eye.x(t), eye.upperLid(t) + 0.25f};
        // Lashes point at the viewer: seen from the front they rise little, most at the outer corner.
        const float fan = 0.28f * t + 0.30f * std::max(t, 0.0f);
        Vec2 direction{eye.side * (fan + 0.10f * random.bellShaped()), eye.open > 0.35f ? -0.5f : 0.8f};
        direction = direction * (1.0f / length(direction));
        const float hair = mix(2.6f, 4.3f, feminine) * mix(0.65f, 1.15f, smoothStep(-0.8f, 0.8f, t)) *
                           random.range(0.75f, 1.15f);
        addHair(studio, list, root, direction, hair, eye.side * mix(-0.9f, 0.4f, random.uniform()) * fan,
                0.26f, Colour{0.010f, 0.007f, 0.006f}, mix(0.62f, 0.85f, feminine));
    }
}

void drawLowerLashes(const Studio& studio, const EyeShape& eye, RandomSource& random, StrokeList& list) {
    const float feminine = 1.0f - studio.sitter.masculine;
    constexpr int kLashes = 34;
    for (int i = 0; i < kLashes; ++i) {
        const float t = mix(-0.6f, 0.98f, (static_cast<float>(i) + random.uniform()) / kLashes);
        const Vec2 root{eye.x(t), eye.lowerLid(t) + 0.7f};
        Vec2 direction{eye.side * (0.45f * t + 0.15f * random.bellShaped()), 0.75f};
        direction = direction * (1.0f / length(direction));
        addHair(studio, list, root, direction, mix(1.3f, 2.1f, feminine) * random.range(0.7f, 1.2f),
                0.2f * eye.side, 0.17f, Colour{0.018f, 0.012f, 0.010f}, mix(0.30f, 0.48f, feminine));
    }
}

}  // namespace

StrokeList drawBrows(const Studio& studio) {
    StrokeList list;
    for (const BrowShape& brow : studio.shape.brows) {
        RandomSource random(studio.sitter.seed, brow.side < 0 ? 21u : 22u);
        toneBrow(studio, brow, list);
        drawBrow(studio, brow, random, list);
    }
    return list;
}

StrokeList drawLashes(const Studio& studio) {
    StrokeList list;
    for (const EyeShape& eye : studio.shape.eyes) {
        RandomSource random(studio.sitter.seed, eye.side < 0 ? 23u : 24u);
        drawLowerLashes(studio, eye, random, list);
        drawUpperLashes(studio, eye, random, list);
    }
    return list;
}

}  // namespace zel::drawing
