#include "faceShape.h"

namespace zel::drawing {

namespace {

/// Half of the average outline from the crown to the chin, and what a strong jaw adds to it.
constexpr Vec2 kOutline[] = {{0, -120},    {31, -116},   {53, -100},  {66, -74}, {71, -40},
                             {71.5f, -8},  {69.5f, 18},  {65.5f, 42}, {60, 64},  {48.8f, 84},
                             {35.2f, 100}, {18.6f, 110}, {0, 114}};
constexpr Vec2 kStrongJaw[] = {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0.5f, 0}, {1, 0},
                               {2, 0}, {4, 1}, {6, 3}, {6, 4}, {4, 4}, {0, 4}};
constexpr int kOutlinePoints = 13;

float catmullRom(float a, float b, float c, float d, float t) {
    return b + 0.5f * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
}

}  // namespace

float curveThrough(const float* values, int count, float t) {
    const float position = clamp01(t) * static_cast<float>(count - 1);
    const int i = std::min(static_cast<int>(position), count - 2);
    const auto at = [&](int k) { return values[std::min(std::max(k, 0), count - 1)]; };
    return catmullRom(at(i - 1), at(i), at(i + 1), at(i + 2), position - static_cast<float>(i));
}

float EyeShape::lowerLid(float along) const {
    const float arch = std::max(0.0f, 1.0f - along * along);
    return centre.y - slant * along + lowerDrop * powerOf(arch, 0.8f) * (1.0f + 0.2f * along);
}

float EyeShape::openUpperLid(float along) const {
    const float arch = std::max(0.0f, 1.0f - along * along);
    return centre.y - slant * along - upperRise * powerOf(arch, 0.68f) * (1.0f - 0.13f * along);
}

float EyeShape::upperLid(float along) const {
    return mix(lowerLid(along), openUpperLid(along), open);
}

float EyeShape::insideBy(Vec2 p) const {
    const float along = t(p.x);
    const float corner = (1.0f - std::fabs(along)) * halfWidth;
    if (corner <= 0)
        return -length(p - Vec2{x(along < 0 ? -1.0f : 1.0f), lowerLid(along < 0 ? -1.0f : 1.0f)});
    return std::min(std::min(p.y - upperLid(along), lowerLid(along) - p.y), corner);
}

float MouthShape::line(float t) const {
    const float u = std::min(std::fabs(t), 1.2f);
    return centreY + 0.9f * bell(t, 0, 0.22f) - 0.6f * bell(u, 0.5f, 0.22f) + 0.4f * u * u -
           smile * 5.5f * u * u;
}

float MouthShape::upperEdge(float t) const {
    const float u = std::fabs(t);
    if (u >= 1) return line(t);
    const float body = 1.0f - powerOf(u, 1.35f);
    return line(t) - upper * body * (1.0f - 0.2f * bell(u, 0, 0.13f) + 0.1f * bell(u, 0.24f, 0.14f));
}

float MouthShape::lowerEdge(float t) const {
    const float u = std::fabs(t);
    return u >= 1 ? line(t) : line(t) + lower * (1.0f - powerOf(u, 2.5f));
}

float MouthShape::insideBy(Vec2 p) const {
    const float t = p.x / halfWidth;
    if (std::fabs(t) >= 1) return -length(Vec2{std::fabs(p.x) - halfWidth, p.y - line(1)});
    // The edges run slanted near the corners, where the vertical gap overstates the distance.
    const float slope = 0.75f + 0.25f * (1.0f - t * t);
    return std::min(p.y - upperEdge(t), lowerEdge(t) - p.y) * slope;
}

FaceShape::FaceShape(const Sitter& sitter)
    : m_masculine(sitter.masculine),
      m_cheeks(sitter.cheeks),
      m_foldDepth(0.5f + 0.7f * clamp01(sitter.smile)) {
    layOutline(sitter);
    layFeatures(sitter);
}

void FaceShape::layOutline(const Sitter& s) {
    // One point of the other half stands before the crown and after the chin, so that both are smooth.
    constexpr int kTold = kOutlinePoints + 2;
    float xs[kTold], ys[kTold];
    for (int i = 0; i < kOutlinePoints; ++i) {
        Vec2 p = kOutline[i] + kStrongJaw[i] * (s.masculine * 1.2f - 0.6f);
        p.x *= s.faceWidth * mix(1.0f, s.jawWidth, smoothStep(10, 80, p.y));
        if (p.y > 40) p.y = 40 + (p.y - 40) * s.chinLength;
        if (p.y < -20) p.y = -20 + (p.y + 20) * s.foreheadHeight;
        xs[i + 1] = p.x;
        ys[i + 1] = p.y;
    }
    xs[0] = -xs[2];
    ys[0] = ys[2];
    xs[kTold - 1] = -xs[kTold - 3];
    ys[kTold - 1] = ys[kTold - 3];
    m_crownY = ys[1];
    m_chinY = ys[kOutlinePoints];
    // Walk the curve finely and note the radius wherever it passes one of the table's directions.
    constexpr int kWalk = 4000;
    int step = 0;
    Vec2 before{};
    float angleBefore = -0.5f * kPi;
    for (int i = 0; i <= kWalk; ++i) {
        const float t = mix(1.0f, kTold - 2.0f, static_cast<float>(i) / kWalk) / (kTold - 1.0f);
        const Vec2 p = Vec2{std::max(0.0f, curveThrough(xs, kTold, t)), curveThrough(ys, kTold, t)} - kMiddle;
        const float angle = i == 0 ? -0.5f * kPi : i == kWalk ? 0.5f * kPi : angleOf(p.y, p.x);
        while (step <= kOutlineSteps) {
            const float wanted = (static_cast<float>(step) / kOutlineSteps - 0.5f) * kPi;
            if (wanted > angle + 1e-6f) break;
            const float span = angle - angleBefore;
            const float u = span > 1e-9f ? clamp01((wanted - angleBefore) / span) : 1.0f;
            m_radius[static_cast<std::size_t>(step++)] = length(i == 0 ? p : mix(before, p, u));
        }
        before = p;
        angleBefore = angle;
    }
    while (step <= kOutlineSteps) m_radius[static_cast<std::size_t>(step++)] = length(before);
}

void FaceShape::layFeatures(const Sitter& s) {
    for (int i = 0; i < 2; ++i) {
        EyeShape& eye = eyes[i];
        eye.side = i == 0 ? -1.0f : 1.0f;
        eye.centre = {eye.side * 31.5f * s.eyeSpacing * mix(1.0f, s.faceWidth, 0.5f), 0};
        eye.halfWidth = 15.8f * s.eyeSize;
        eye.upperRise = mix(7.4f, 6.3f, s.masculine) * s.eyeSize;
        // Laughing cheeks push the lower lids up until they arch; a wink squeezes the lid a little.
        const float wink = clamp01(eye.side * s.wink);
        eye.lowerDrop = 4.5f * s.eyeSize - 0.5f * clamp01(s.smile) - 5.5f * s.eyeSize * s.laugh - 1.5f * wink;
        eye.slant = 0.5f + 1.5f * s.eyeSlant;
        eye.open = s.eyeOpen[i] * (1.0f - 0.13f * clamp01(s.smile)) * (1.0f - 0.2f * s.laugh) * (1.0f - wink);
        eye.irisRadius = 5.9f * mix(1.0f, s.eyeSize, 0.5f);
        eye.pupilRadius = eye.irisRadius * 0.36f;
        eye.iris = eye.centre + Vec2{s.gaze.x * 5.0f, s.gaze.y * 3.2f - 0.9f};

        BrowShape& brow = brows[i];
        brow.side = eye.side;
        brow.innerX = 12.0f * s.eyeSpacing;
        brow.outerX = 54.0f * mix(1.0f, s.faceWidth, 0.7f);
        const float arch = s.browArch, lift = s.browHeight + 0.5f;
        brow.middle = {-17.6f - lift, -18.9f - arch * 0.8f - lift, -20.4f - arch * 2.0f - lift,
                       -20.6f - arch * 2.8f - lift, -16.6f - arch * 1.2f - lift};
        const float thick = s.browThickness;
        brow.halfThickness = {3.0f * thick, 3.9f * thick, 3.5f * thick, 2.3f * thick, 0.5f};
    }
    const float longer = s.noseLength;
    nose.tipY = 36.5f * longer;
    nose.baseY = 45.5f * longer;
    nose.wingY = 40.0f * longer;
    nose.wingX = mix(15.6f, 17.6f, s.masculine) * s.noseWidth * mix(1.0f, 1.13f, s.melanin);
    nose.bridge = mix(0.92f, 1.1f, s.masculine) * mix(1.0f, 0.86f, s.melanin);
    nose.tip = s.noseTip;
    mouth.smile = s.smile;
    mouth.centreY = nose.baseY + mix(20.0f, 21.5f, s.masculine) * s.chinLength;
    mouth.halfWidth =
        24.5f * s.mouthWidth * mix(0.97f, 1.05f, s.masculine) * (1.0f + 0.12f * clamp01(s.smile));
    mouth.upper = 8.4f * s.lipFullness * mix(1.0f, 1.2f, s.melanin) * (1.0f - 0.15f * clamp01(s.smile));
    mouth.lower = 10.4f * s.lipFullness * mix(1.0f, 1.1f, s.melanin) * (1.0f - 0.12f * clamp01(s.smile));
    earCentre = {outlineRadius(0) + 0.5f, 11};
}

float FaceShape::outlineRadius(float angle) const {
    // Both halves are alike: fold the left one over.
    if (angle > 0.5f * kPi) angle = kPi - angle;
    if (angle < -0.5f * kPi) angle = -kPi - angle;
    const float position = clamp01(angle / kPi + 0.5f) * kOutlineSteps;
    const int i = std::min(static_cast<int>(position), kOutlineSteps - 1);
    const auto index = static_cast<std::size_t>(i);
    return mix(m_radius[index], m_radius[index + 1], position - static_cast<float>(i));
}

Vec2 FaceShape::outlinePoint(float angle) const {
    return kMiddle + Vec2{cosineOf(angle), sineOf(angle)} * outlineRadius(angle);
}

FaceShape::Polar FaceShape::polar(Vec2 p) const {
    constexpr float kDelta = 0.02f;
    const Vec2 d = p - kMiddle;
    const float radius = length(d), angle = angleOf(d.y, d.x);
    const float outline = outlineRadius(angle);
    const float slope =
        (outlineRadius(angle + kDelta) - outlineRadius(angle - kDelta)) / (2 * kDelta * outline);
    return {radius / outline, angle, (radius - outline) / std::sqrt(1.0f + slope * slope)};
}

}  // namespace zel::drawing
