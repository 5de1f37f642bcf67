#include "person.h"
#include "portrait/noiseField.h"
#include "solidMath.h"

namespace zeldepth {

using namespace zel::drawing;

namespace {

constexpr Vec3 kNeck{0, 0.10f, 0.02f};  // about which the head turns

/// Distances beyond this are told from a ball around the group alone.
constexpr float kFar = 0.12f;

/// Cheap bumps for curls and folds, about -1 to 1.
float bumps(Vec3 p, float scale) {
    return sineOf(p.x * scale + 1.3f) * sineOf(p.y * scale * 1.1f + 0.4f) * sineOf(p.z * scale * 0.9f + 2.1f);
}

}  // namespace

Vec3 Person::toHead(Vec3 p) const {
    Vec3 q = p - kNeck;
    q = turnedY(q, m_headYaw.sine, m_headYaw.cosine);
    q = turnedX(q, m_headPitch.sine, m_headPitch.cosine);
    q = turnedZ(q, m_headRoll.sine, m_headRoll.cosine);
    return (q + kNeck) * (1 / m_headSize);
}

Vec3 Person::toBody(Vec3 p) const {
    const Vec3 axis{0, 0, 0.03f};
    return turnedY(p - axis, m_bodyYaw.sine, m_bodyYaw.cosine) + axis;
}

float Person::headSolid(Vec3 h) const {
    const Vec3 m{std::fabs(h.x), h.y, h.z};  // both halves are alike
    float d = fromEllipsoid(m, {0, -0.022f, 0.012f}, {0.075f, 0.098f, 0.095f});
    d = joined(d, fromEllipsoid(m, {0, 0.045f, -0.02f}, {0.057f * m_jaw, 0.076f, 0.068f}), 0.04f);
    d = joined(d, fromEllipsoid(m, {0, 0.098f, -0.062f}, {0.022f * m_jaw, 0.017f, 0.02f}), 0.03f);
    d = without(d, fromEllipsoid(m, {0.032f, -0.010f, -0.102f}, {0.018f, 0.012f, 0.016f}), 0.02f);
    d = joined(d, fromEllipsoid(m, {0.032f, -0.010f, -0.077f}, {0.012f, 0.010f, 0.010f}), 0.006f);
    const float n = m_nose;
    d = joined(d,
               fromCapsule(m, {0, -0.018f, -0.080f}, {0, 0.027f, -0.100f - 0.010f * n}, 0.007f, 0.011f * n),
               0.015f);
    d = joined(d, fromEllipsoid(m, {0.011f * n, 0.030f, -0.096f}, {0.008f, 0.007f, 0.010f}), 0.008f);
    d = joined(d, fromEllipsoid(m, {0, 0.055f, -0.086f}, {0.021f, 0.007f, 0.007f}), 0.010f);
    d = joined(d, fromEllipsoid(m, {0, 0.066f, -0.083f}, {0.018f, 0.007f, 0.007f}), 0.010f);
    d = joined(d, fromEllipsoid(m, {0.078f, 0.004f, 0.018f}, {0.008f, 0.030f, 0.018f}), 0.006f);
    return joined(d, fromCapsule(m, {0, 0.05f, 0.03f}, {0, 0.19f, 0.045f}, 0.052f * m_bulk, 0.058f * m_bulk),
                  0.03f);
}

float Person::hairSolid(Vec3 h, Vec3 b) const {
    if (m_cut == HairCut::none) return 1e3f;
    const float t = m_hairThick;
    const Vec3 m{std::fabs(h.x), h.y, h.z};
    float d = fromEllipsoid(h, {0, -0.024f, 0.014f}, {0.076f + t, 0.099f + t, 0.096f + t});
    if (m_cut == HairCut::round) {
        const float r = 0.10f + 2.5f * t;
        d = joined(d, fromEllipsoid(h, {0, -0.035f, 0.03f}, {r, r, r}), 0.03f);
    }
    if (m_cut == HairCut::bun)
        d = joined(d, fromEllipsoid(h, {0, -0.09f - t, 0.07f}, {0.04f + t, 0.035f + t, 0.04f + t}), 0.01f);
    if (m_cut == HairCut::bob || m_cut == HairCut::long_) {
        d = joined(d,
                   fromEllipsoid(h, {0, 0.03f, 0.035f}, {0.083f + t, 0.10f + 0.3f * m_hairLength, 0.08f + t}),
                   0.03f);
    }
    d = std::max(d, h.y - (m_cut == HairCut::bob || m_cut == HairCut::long_ ? 0.05f + m_hairLength
                                                                            : 0.055f - 0.3f * h.z * 0.2f));
    // The face stays free, up to the hairline.
    d = without(d, fromEllipsoid(m, {0, 0.055f, -0.115f}, {0.068f, 0.118f + m_hairline, 0.085f}), 0.012f);
    if (m_cut == HairCut::close || m_cut == HairCut::short_ || m_cut == HairCut::bun)
        d = without(d, fromEllipsoid(m, {0.085f, 0.055f, -0.01f}, {0.03f, 0.05f, 0.045f}), 0.015f);
    if (m_cut == HairCut::long_) {
        const float end = 0.06f + m_hairLength;
        const Vec3 s{std::fabs(b.x), b.y, b.z};
        const float width = 0.018f + t;
        d = joined(d, fromCapsule(s, {0.074f, 0.0f, 0.012f}, {0.10f, end, -0.045f}, width, width * 0.9f),
                   0.03f);
        d = joined(d, fromCapsule(b, {0, 0.02f, 0.06f}, {0, end, 0.10f}, 0.07f + t, 0.075f + t), 0.03f);
    }
    return d + m_waves * bumps(h, 70) + 0.3f * m_waves * bumps(h, 170);
}

float Person::hatSolid(Vec3 h) const {
    switch (m_hat) {
        case Hat::cap: {
            float d = fromEllipsoid(h, {0, -0.045f, 0.012f}, {0.088f, 0.092f, 0.108f});
            d = std::max(d, h.y + 0.048f);
            return joined(d, fromEllipsoid(h, {0, -0.055f, -0.115f}, {0.072f, 0.008f, 0.075f}), 0.01f);
        }
        case Hat::brimmed: {
            const float r = 0.15f + 0.06f * m_hairLength;
            float d = fromEllipsoid(h, {0, -0.065f, 0.01f}, {r, 0.010f, r * 1.1f});
            return joined(d, fromEllipsoid(h, {0, -0.10f, 0.01f}, {0.084f, 0.085f, 0.10f}), 0.015f);
        }
        case Hat::knitted: {
            float d = fromEllipsoid(h, {0, -0.045f, 0.015f}, {0.089f, 0.105f, 0.110f});
            return std::max(d, h.y + 0.040f - 0.2f * h.z);
        }
        case Hat::scarf: {
            float d = fromEllipsoid(h, {0, 0.0f, 0.02f}, {0.096f, 0.13f, 0.115f});
            d = joined(d, fromCapsule(h, {0, 0.10f, 0.02f}, {0, 0.2f, 0.02f}, 0.085f, 0.13f), 0.05f);
            const Vec3 m{std::fabs(h.x), h.y, h.z};
            return without(d, fromEllipsoid(m, {0, 0.025f, -0.12f}, {0.062f, 0.098f, 0.085f}), 0.01f);
        }
        case Hat::peaked: {
            float d = fromEllipsoid(h, {0, -0.118f, 0.0f}, {0.118f, 0.030f, 0.130f});
            d = joined(d, fromCapsule(h, {0, -0.065f, 0.012f}, {0, -0.10f, 0.01f}, 0.086f, 0.092f), 0.02f);
            d = std::max(d, h.y + 0.055f);
            return joined(d, fromEllipsoid(h, {0, -0.058f, -0.105f}, {0.072f, 0.009f, 0.050f}), 0.008f);
        }
        default:
            return 1e3f;
    }
}

float Person::torsoSolid(Vec3 b) const {
    const Vec3 m{std::fabs(b.x), b.y, b.z};
    const float w = m_shoulders, k = m_bulk;
    const float top = 0.215f + m_slope * 0.1f;
    float d = fromCapsule(m, {0.02f, 0.20f, 0.045f}, {w - 0.02f, top + 0.025f, 0.04f}, 0.05f * k, 0.055f * k);
    d = joined(d, fromEllipsoid(m, {0, 0.38f, 0.03f}, {w * 0.92f, 0.20f, 0.115f * k}), 0.06f);
    d = joined(d, fromEllipsoid(m, {0, 0.64f, 0.03f}, {w * 0.85f * k, 0.24f, 0.115f * k * k}), 0.08f);
    return joined(d, fromEllipsoid(m, {0.06f, 0.98f, 0.03f}, {0.13f * k, 0.28f, 0.12f * k}), 0.08f);
}

float Person::collarSolid(Vec3 b) const {
    if (!m_collar) return 1e3f;
    float d = fromCapsule(b, {0, 0.155f, 0.045f}, {0, 0.20f, 0.045f}, 0.066f * m_bulk, 0.078f * m_bulk);
    // Open in front.
    return without(d, fromEllipsoid(b, {0, 0.13f, -0.05f}, {0.03f, 0.07f, 0.07f}), 0.01f);
}

void Person::addArms(Vec3 b, Nearest& found) const {
    const float sleeve = 0.050f * m_bulk, wrist = 0.034f * (m_bareArms ? 1.0f : m_bulk);
    for (const Arm& arm : m_arms) {
        const float upper = fromCapsule(b, arm.shoulder, arm.elbow, sleeve, 0.043f * m_bulk);
        const float lower = fromCapsule(b, arm.elbow, arm.hand, 0.041f * m_bulk, wrist);
        const Vec3 past = arm.hand + normalized(arm.hand - arm.elbow) * 0.055f;
        const float hand = fromCapsule(b, arm.hand, past, 0.032f, 0.022f);
        const float cloth = m_bareArms ? upper : joined(upper, lower, 0.02f);
        if (cloth < found.distance) found = {cloth, Part::cloth};
        const float bare = m_bareArms ? std::min(lower, hand) : hand;
        if (bare < found.distance) found = {bare, Part::skin};
    }
}

Person::Nearest Person::nearest(Vec3 p) const {
    Nearest found;
    const Vec3 b = toBody(p);
    const float aboutHead =
        lengthOf(p - Vec3{0, 0.0f, 0.02f}) - (0.30f + (m_cut == HairCut::long_ ? 0.25f : 0));
    if (aboutHead > kFar) {
        found.distance = aboutHead;
    } else {
        const Vec3 h = toHead(p);
        found = {headSolid(h) * m_headSize, Part::skin};
        const float hair = hairSolid(h, b) * m_headSize * 0.8f;
        if (hair < found.distance) found = {hair, Part::hair};
        const float hat = hatSolid(h) * m_headSize;
        if (hat < found.distance) found = {hat, Part::hat};
    }
    const float aboutBody = lengthOf(p - Vec3{0, 0.62f, 0.0f}) - 0.95f;
    if (aboutBody > kFar) {
        found.distance = std::min(found.distance, aboutBody);
        return found;
    }
    const float torso = torsoSolid(b) + 0.004f * bumps(b, 38), collar = collarSolid(b);
    if (torso < found.distance) found = {torso, Part::cloth};
    if (collar < found.distance) found = {collar, Part::cloth};
    addArms(b, found);
    if (m_holding) {
        const float thing = m_thingKind == 0 ? fromEllipsoid(b, m_thingAt, m_thingSize)
                                             : fromBox(b, m_thingAt, m_thingSize, 0.008f);
        if (thing < found.distance) found = {thing, Part::thing};
    }
    return found;
}

}  // namespace zeldepth
