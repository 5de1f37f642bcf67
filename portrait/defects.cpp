#include "defects.h"

#include "noiseField.h"
#include "randomSource.h"

namespace zel::drawing {

namespace {

/// How much a layer covers, and how dark its middle is, across a line at `off` line widths from its centre.
struct LineCover {
    float cover = 0;
    float groove = 0;  // 1 in the middle of the line, below 0 on the lit ridge beside it
};

LineCover nearestLine(const std::vector<SkinLine>& lines, Vec2 p) {
    LineCover best;
    for (const SkinLine& line : lines) {
        if (p.x < line.low.x || p.x > line.high.x || p.y < line.low.y || p.y > line.high.y) continue;
        float nearest = 1e9f, along = 0, side = 0;
        const std::size_t last = line.points.size() - 1;
        for (std::size_t i = 0; i < last; ++i) {
            const Vec2 d = line.points[i + 1] - line.points[i], q = p - line.points[i];
            const float t = clamp01(dot(q, d) / std::max(dot(d, d), 1e-6f));
            const float distance = length(q - d * t);
            if (distance >= nearest) continue;
            nearest = distance;
            along = (static_cast<float>(i) + t) / static_cast<float>(last);
            side = q.y - d.y * t;
        }
        const float off = nearest / line.width;
        const float taper = smoothStep(0, 0.22f, along) * smoothStep(1, 0.7f, along) * line.strength;
        const float cover = taper * smoothStep(3.0f, 0.6f, off);
        if (cover <= best.cover) continue;
        const float ridge = side > 0 ? bell(off, 1.7f, 0.9f) : 0.0f;
        best = {cover, expOf(-off * off * 1.6f) - 0.4f * ridge};
    }
    return best;
}

float wholeBytes(float cover) {
    return std::floor(clamp01(cover) * 255.0f + 0.5f) / 255.0f;
}

float& of(DefectCover& cover, Defect defect) {
    return cover[static_cast<std::size_t>(defect)];
}
float of(const DefectCover& cover, Defect defect) {
    return cover[static_cast<std::size_t>(defect)];
}

float share(double value) {
    return settled(value, 0, 0, 1);
}

}  // namespace

Defects::Defects(const PortraitParams& params, const Studio& studio)
    : m_studio(studio),
      m_freckles(share(params.freckles)),
      m_wrinkles(share(params.wrinkles)),
      m_darkCircles(share(params.darkCircles)),
      m_dullSkin(share(params.dullSkin)) {
    placeMoles(std::min(params.moles, 60));
    placeScratches(std::min(params.scratches, 20));
    if (m_wrinkles > 0) placeWrinkles();
    m_any = m_freckles > 0 || m_wrinkles > 0 || m_darkCircles > 0 || m_dullSkin > 0 || !m_moles.empty() ||
            !m_scratchLines.empty();
}

/// True where nothing but skin lies within `margin` mm.
bool Defects::onPlainSkin(Vec2 p, float margin) const {
    const FaceShape& shape = m_studio.shape;
    if (shape.polar(p).distance > -8 || p.y < -60) return false;
    for (const EyeShape& eye : shape.eyes)
        if (std::fabs(p.x - eye.centre.x) < eye.halfWidth + 3 + margin &&
            std::fabs(p.y - eye.centre.y) < 10 + margin)
            return false;
    for (const BrowShape& brow : shape.brows) {
        const float t = brow.along(p.x);
        if (t > -0.15f && t < 1.15f && std::fabs(p.y - brow.y(t)) < 7 + margin) return false;
    }
    if (shape.mouth.insideBy(p) > -4 - margin && std::fabs(p.x) < shape.mouth.halfWidth + 5 + margin &&
        std::fabs(p.y - shape.mouth.centreY) < 16)
        return false;
    return !(std::fabs(p.x) < shape.nose.wingX + 1 + margin && std::fabs(p.y - shape.nose.wingY) < 11);
}

void Defects::placeMoles(int count) {
    RandomSource random(m_studio.sitter.seed, 51);
    for (int tries = 0; static_cast<int>(m_moles.size()) < count && tries < 4000; ++tries) {
        const Mole mole{{random.range(-66, 66), random.range(-60, 108)},
                        0.55f + 1.25f * square(random.uniform()),
                        random.range(0.55f, 0.92f)};
        if (!onPlainSkin(mole.centre, mole.radius + 1)) continue;
        const bool crowded = std::any_of(m_moles.begin(), m_moles.end(), [&](const Mole& other) {
            return length(other.centre - mole.centre) < 5 + other.radius + mole.radius;
        });
        if (!crowded) m_moles.push_back(mole);
    }
}

void Defects::addLine(std::vector<SkinLine>& lines, std::vector<Vec2> points, float width, float strength) {
    SkinLine line{std::move(points), width, strength, {1e9f, 1e9f}, {-1e9f, -1e9f}};
    for (const Vec2& p : line.points) {
        line.low = {std::min(line.low.x, p.x - 3 * width), std::min(line.low.y, p.y - 3 * width)};
        line.high = {std::max(line.high.x, p.x + 3 * width), std::max(line.high.y, p.y + 3 * width)};
    }
    lines.push_back(std::move(line));
}

void Defects::placeScratches(int count) {
    RandomSource random(m_studio.sitter.seed, 52);
    for (int tries = 0; static_cast<int>(m_scratchLines.size()) < count && tries < 2000; ++tries) {
        const Vec2 start{random.range(-58, 58), random.range(-58, 100)};
        const float angle = random.range(0, 2 * kPi), size = random.range(9, 26),
                    bend = random.range(-0.25f, 0.25f);
        std::vector<Vec2> points;
        bool clear = true;
        for (int i = 0; i <= 12; ++i) {
            const float t = static_cast<float>(i) / 12, turned = angle + bend * t;
            const Vec2 p = start + Vec2{cosineOf(turned), sineOf(turned)} * (size * t);
            clear = clear && onPlainSkin(p, 1);
            points.push_back({p.x + 0.25f * random.bellShaped(), p.y + 0.25f * random.bellShaped()});
        }
        if (clear)
            addLine(m_scratchLines, std::move(points), random.range(0.28f, 0.5f), random.range(0.75f, 1.0f));
    }
}

void Defects::placeWrinkles() {
    RandomSource random(m_studio.sitter.seed, 53);
    const FaceShape& shape = m_studio.shape;
    // Across the forehead.
    for (int row = 0; row < 4; ++row) {
        const float y = -36.0f - 8.5f * static_cast<float>(row), left = random.range(-44, -24),
                    right = random.range(24, 44);
        std::vector<Vec2> points;
        for (int i = 0; i <= 20; ++i) {
            const float x = mix(left, right, static_cast<float>(i) / 20);
            const float wave =
                1.6f * smoothNoise(x / 13, static_cast<float>(row) * 7, m_studio.sitter.seed + 61u);
            points.push_back({x, y - 2.2f * bell(std::fabs(x), 26, 14) + 1.2f * bell(x, 0, 12) + wave});
        }
        addLine(m_wrinkleLines, std::move(points), 0.75f, random.range(0.55f, 0.95f));
    }
    for (const EyeShape& eye : shape.eyes) {
        const float side = eye.side;
        // Crow's feet fan out from the outer corner.
        for (int i = 0; i < 5; ++i) {
            const float angle = -0.72f + 0.36f * static_cast<float>(i) + 0.08f * random.bellShaped(),
                        size = random.range(9, 17);
            const Vec2 start{eye.x(1) + side * random.range(3.5f, 6),
                             eye.centre.y - eye.slant + 9.0f * sineOf(angle)};
            std::vector<Vec2> points;
            for (int k = 0; k <= 8; ++k) {
                const float t = static_cast<float>(k) / 8,
                            turned = angle + 0.3f * t * (angle > 0 ? 1.0f : -1.0f);
                points.push_back(start + Vec2{side * cosineOf(turned), sineOf(turned)} * (size * t));
            }
            addLine(m_wrinkleLines, std::move(points), 0.55f, random.range(0.6f, 1.0f));
        }
        // From the nose's wing round the mouth.
        std::vector<Vec2> fold;
        const float endY = shape.mouth.line(1) + random.range(2, 9);
        for (int k = 0; k <= 16; ++k) {
            const float t = static_cast<float>(k) / 16;
            const float x = mix(shape.nose.wingX + 2.5f, shape.mouth.halfWidth + 9, powerOf(t, 0.8f)) -
                            3.0f * smoothStep(0.75f, 1, t);
            fold.push_back({side * x, mix(shape.nose.wingY - 4, endY, t)});
        }
        addLine(m_wrinkleLines, std::move(fold), 1.5f, 0.7f);
        // Under the eye, and the frown beside the nose's root.
        for (int row = 0; row < 2; ++row) {
            std::vector<Vec2> points;
            for (int k = 0; k <= 10; ++k) {
                const float t =
                    mix(-0.75f, 0.75f - 0.3f * static_cast<float>(row), static_cast<float>(k) / 10);
                points.push_back(
                    {eye.x(t), eye.lowerLid(t) + 4.6f + 3.4f * static_cast<float>(row) - 1.2f * t * t});
            }
            addLine(m_wrinkleLines, std::move(points), 0.55f, random.range(0.5f, 0.8f));
        }
        const float x = side * random.range(5, 7.5f);
        addLine(m_wrinkleLines, {{x, -13}, {x * 1.04f, -18}, {x * 1.12f, -23}, {x * 1.22f, -29}}, 0.7f,
                random.range(0.4f, 0.9f));
    }
}

float Defects::frecklesAt(Vec2 p) const {
    const float x = std::fabs(p.x);
    const float dense = clamp01(bell(x, p.y, 34, 26, 26, 18) + 0.9f * bell(p.x, p.y, 0, 26, 16, 20) +
                                0.35f * bell(p.x, p.y, 0, -40, 46, 18));
    if (dense < 0.05f) return 0;
    const std::uint32_t seed = m_studio.sitter.seed * 71u;
    float cover = 0;
    for (const float spacing : {2.1f, 3.6f}) {
        const float size = 0.30f + 0.12f * smoothNoise(p.x / 5, p.y / 5, seed + 2u);
        const float spot = smoothStep(
            size, size * 0.45f,
            cellNoise(p.x / spacing, p.y / spacing, seed + static_cast<std::uint32_t>(spacing * 10)));
        const float present =
            smoothStep(-0.15f, 0.25f,
                       smoothNoise(p.x / (spacing * 1.6f), p.y / (spacing * 1.6f), seed + 9u) + dense - 0.6f);
        cover = std::max(cover, spot * present);
    }
    return cover * smoothStep(0.05f, 0.35f, dense);
}

float Defects::darkCircleAt(Vec2 p) const {
    float cover = 0;
    for (const EyeShape& eye : m_studio.shape.eyes) {
        const float t = eye.t(p.x);
        if (std::fabs(t) > 1.35f) continue;
        const float inner = std::min(std::max(t, -1.0f), 1.0f), under = p.y - eye.lowerLid(inner);
        // Deepest near the nose, ending in a soft crescent a centimetre below the lid.
        const float reach =
            mix(12.5f, 8.0f, smoothStep(-0.8f, 1.0f, t)) * std::sqrt(std::max(0.0f, 1 - square(t / 1.35f)));
        const float crescent = smoothStep(-0.6f, 0.8f, under) * smoothStep(reach, reach * 0.35f, under);
        cover = std::max(cover, crescent * mix(1.0f, 0.65f, smoothStep(-0.6f, 0.9f, t)));
    }
    return cover;
}

float Defects::molesAt(Vec2 p) const {
    float cover = 0;
    for (const Mole& mole : m_moles) {
        const Vec2 d = p - mole.centre;
        const float reach = mole.radius * 1.5f + m_studio.pixelMm;
        if (std::fabs(d.x) > reach || std::fabs(d.y) > reach) continue;
        const float ragged = 1.0f + 0.14f * smoothNoise(p.x * 1.3f, p.y * 1.3f, m_studio.sitter.seed + 81u);
        const float inside = mole.radius * ragged - length(d);
        cover = std::max(cover,
                         mole.darkness * edgeCoverage(inside, m_studio.pixelMm, 0.45f + 0.3f * mole.radius));
    }
    return cover;
}

DefectCover Defects::coverAt(Vec2 p) const {
    DefectCover cover{};
    if (!m_any) return cover;
    of(cover, Defect::dullSkin) = wholeBytes(m_dullSkin);
    if (m_darkCircles > 0) of(cover, Defect::darkCircles) = wholeBytes(m_darkCircles * darkCircleAt(p));
    if (m_freckles > 0) of(cover, Defect::freckles) = wholeBytes(m_freckles * frecklesAt(p));
    if (m_wrinkles > 0)
        of(cover, Defect::wrinkles) = wholeBytes(m_wrinkles * nearestLine(m_wrinkleLines, p).cover);
    if (!m_scratchLines.empty())
        of(cover, Defect::scratches) = wholeBytes(nearestLine(m_scratchLines, p).cover);
    if (!m_moles.empty()) of(cover, Defect::moles) = wholeBytes(molesAt(p));
    return cover;
}

Colour Defects::apply(const DefectCover& cover, Vec2 p, Colour skin) const {
    const float dull = of(cover, Defect::dullSkin);
    if (dull > 0) {
        const float grey = luminance(skin);
        const Colour flat = mix(Colour{grey, grey, grey}, skin, 0.55f) * Colour{0.80f, 0.79f, 0.70f};
        skin = mix(skin, flat, dull);
    }
    const float shade = 1.0f - 0.25f * m_studio.sitter.melanin;
    skin = skin * mix(Colour{1, 1, 1}, Colour{0.60f, 0.50f, 0.56f} * (1 / shade),
                      0.9f * of(cover, Defect::darkCircles));
    skin = skin * mix(Colour{1, 1, 1}, Colour{0.74f, 0.58f, 0.46f}, of(cover, Defect::freckles));
    if (of(cover, Defect::wrinkles) > 0) {
        const float groove = nearestLine(m_wrinkleLines, p).groove;
        const Colour tint = groove > 0 ? mix(Colour{1, 1, 1}, Colour{0.52f, 0.42f, 0.40f}, groove)
                                       : Colour{1, 1, 1} * (1 - 0.45f * groove);
        skin = skin * mix(Colour{1, 1, 1}, tint, of(cover, Defect::wrinkles));
    }
    const Colour scab = m_studio.sitter.skin * Colour{0.62f, 0.22f, 0.20f} * (0.5f + luminance(skin));
    skin = mix(skin, scab, 0.8f * of(cover, Defect::scratches));
    const Colour mole = m_studio.sitter.skin * Colour{0.22f, 0.13f, 0.09f} * (0.35f + luminance(skin) * 1.2f);
    return mix(skin, mole, of(cover, Defect::moles));
}

}  // namespace zel::drawing
