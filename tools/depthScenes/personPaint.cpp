#include "person.h"
#include "portrait/noiseField.h"

namespace zeldepth {

using namespace zel::drawing;

namespace {

/// 1 inside the ellipse, 0 outside, soft over `soft` of its radius.
float inEllipse(float x, float y, float cx, float cy, float rx, float ry, float soft = 0.3f) {
    return smoothStep(1 + soft, 1 - soft, std::sqrt(square((x - cx) / rx) + square((y - cy) / ry)));
}

}  // namespace

float Person::glossOf(Part part) const {
    switch (part) {
        case Part::skin:
            return 0.25f;
        case Part::hair:
            return 0.35f;
        case Part::thing:
            return 0.4f;
        default:
            return 0.04f;
    }
}

Colour Person::faceAt(Vec3 h, Colour skin) const {
    const float x = std::fabs(h.x), y = h.y;
    Colour colour = skin;
    const auto lay = [&](Colour over, float cover) { colour = mix(colour, over, clamp01(cover)); };

    lay(skin * Colour{1.1f, 0.78f, 0.75f}, 0.4f * inEllipse(x, y, 0.045f, 0.028f, 0.024f, 0.02f, 0.9f));
    lay(skin * 0.6f, 0.4f * inEllipse(x, y, 0.032f, -0.010f, 0.022f, 0.016f, 0.7f));
    const float browY = -0.031f - 0.004f * (1 - square((x - 0.035f) / 0.02f));
    lay(m_hair * 0.7f,
        0.9f * m_brow * inEllipse(x, y, 0.034f, browY, 0.019f, 0.0032f * (0.5f + m_brow), 0.5f));

    const float eyeX = x - 0.032f, openness = 0.0052f * m_eyes;
    const float eye = inEllipse(eyeX, y, 0, -0.010f, 0.0135f, openness, 0.25f);
    lay(skin * 0.25f, 0.8f * inEllipse(eyeX, y, 0, -0.0115f, 0.0155f, openness * 1.25f, 0.3f));
    lay({0.75f, 0.72f, 0.70f}, eye);
    lay(m_iris, eye * inEllipse(eyeX, y, 0, -0.010f, 0.0058f, 0.0058f, 0.2f));
    lay({0.005f, 0.005f, 0.005f}, eye * inEllipse(eyeX, y, 0, -0.010f, 0.0026f, 0.0026f, 0.3f));

    lay(skin * 0.15f, 0.8f * inEllipse(x, y, 0.008f * m_nose, 0.036f, 0.0045f, 0.003f, 0.6f));
    lay(skin * 0.6f, 0.5f * inEllipse(x, y, 0.018f * m_nose, 0.032f, 0.004f, 0.008f, 0.8f));

    const float curve = 0.06f - m_smile * 6.0f * square(x) + 0.004f * m_smile;
    const float wide = 0.023f * (1 + 0.25f * std::max(m_smile, 0.0f));
    const Colour lips = mix(m_lips, Colour{0.45f, 0.03f, 0.05f}, 0.7f * m_lipstick);
    if (m_beard > 0) {
        const float chin = smoothStep(0.02f, 0.055f, y + 0.35f * (x - 0.03f)) *
                           smoothStep(0.9f, 0.3f, m_beard < 0.5f ? x / 0.04f : 0.0f);
        const float grain = 0.75f + 0.5f * smoothNoise(h.x * 700, h.y * 300 + h.z * 300, m_seed);
        lay(m_hair * grain, chin * std::min(1.0f, 0.35f + m_beard));
    }
    lay(lips, 0.85f * inEllipse(x, y, 0, curve, wide, 0.0085f + 0.008f * m_open, 0.3f));
    if (m_open > 0) {
        const float gap = 0.0025f + 0.0065f * m_open;
        const float mouth = inEllipse(x, y, 0, curve, wide * 0.82f, gap, 0.25f);
        lay({0.06f, 0.012f, 0.012f}, mouth);
        lay({0.75f, 0.72f, 0.66f}, mouth * smoothStep(curve + 0.3f * gap, curve - 0.1f * gap, y));
    } else {
        lay(lips * 0.25f, inEllipse(x, y, 0, curve, wide * 0.95f, 0.0014f, 0.6f));
    }
    if (m_glasses > 0) {
        const float lens = std::sqrt(square((x - 0.034f) / 0.027f) + square((y + 0.008f) / 0.021f));
        const float rim = smoothStep(0.15f, 0.06f, std::fabs(lens - 1));
        const bool bridge = x < 0.010f && std::fabs(y + 0.012f) < 0.0022f;
        const bool temple = x > 0.060f && std::fabs(y + 0.012f) < 0.003f;
        if (m_glasses == 2) lay({0.012f, 0.012f, 0.014f}, lens < 1 ? 0.93f : 0.0f);
        lay(m_rims, bridge || temple ? 1.0f : rim);
    }
    return colour;
}

Colour Person::skinAt(Vec3 h, Vec3 facing) const {
    const float mottled = 1 + 0.08f * cloudNoise(h.x * 30 + 5, h.y * 30 + h.z * 17, 3, m_seed);
    Colour skin = m_skin * mottled;
    if (facing.z < 0.35f && h.z < 0.035f && h.y < 0.11f && h.y > -0.06f) skin = faceAt(h, skin);
    // The hair's roots: a close cut, and the scalp below longer hair.
    if (m_cut != HairCut::none && h.y < 0.03f && h.y < 0.7f * h.z - 0.02f) skin = mix(skin, m_hair, 0.7f);
    return skin;
}

Colour Person::hairAt(Vec3 h) const {
    const float around = angleOf(h.x, h.z + 0.3f) * 60;
    const float strand = smoothNoise(around * 2.5f, h.y * 14, m_seed + 3u) +
                         0.6f * smoothNoise(around * 6, h.y * 25, m_seed + 4u);
    return m_hair * std::max(0.3f, 1 + 0.5f * strand);
}

Colour Person::clothAt(Vec3 b) const {
    const float x = std::fabs(b.x), y = b.y;
    const bool front = b.z < 0.05f;
    const float around = angleOf(b.x, 0.05f - b.z) * 0.16f;
    const float neck = 0.215f + m_neckline;
    const float inner = square(x / 0.075f) + square((y - 0.19f) / std::max(0.03f, m_neckline + 0.03f));
    if (!m_collar && front && inner < 1) return m_skin * 0.95f;
    if (m_bareShoulders && y < 0.29f) return m_skin;
    if (m_coatOpen && front) {
        const float edge = x - m_opening * std::max(0.0f, 0.52f - y);
        if (m_hasTie && x < 0.012f + 0.05f * std::max(0.0f, y - 0.2f) && y > 0.2f) return m_tie.at(around, y);
        if (edge < 0) return m_shirt.at(around, y);
        if (edge < 0.004f || (edge < 0.055f && std::fabs(edge - 0.05f) < 0.004f && y < 0.45f))
            return m_coat.at(around, y) * 0.4f;
        if (edge < 0.05f && y < 0.45f) return m_coat.at(y, around) * 0.9f;
    } else if (front && x < 0.004f && y > neck && m_collar) {
        const float along = y * 11 - std::floor(y * 11);
        return m_coat.at(around, y) * (along < 0.08f ? 1.8f : 0.5f);
    }
    for (int i = 0; i < m_badges && front; ++i) {
        const std::uint32_t h = latticeHash(i, 77, m_seed);
        const float cx = (unitOf(h) - 0.5f) * 0.26f, cy = 0.30f + 0.22f * unitOf(h * 3u);
        const float rx = 0.012f + 0.03f * unitOf(h * 5u), ry = 0.008f + 0.025f * unitOf(h * 7u);
        if (std::fabs(b.x - cx) < rx && std::fabs(y - cy) < ry)
            return m_tie.at(b.x * 3, y * 3) * (0.5f + unitOf(h * 11u));
    }
    const float fold = cloudNoise(b.x * 9 + b.z * 5, b.y * 5, 3, m_seed + 7u);
    return m_coat.at(around, y) * (1 + 0.18f * fold);
}

Colour Person::colourAt(Vec3 p, Vec3 facing, Part part) const {
    const Vec3 h = toHead(p), b = toBody(p);
    switch (part) {
        case Part::skin:
            return skinAt(h, toHead(facing + p) - h);
        case Part::hair:
            return hairAt(h);
        case Part::hat:
            return m_hatPattern.at(angleOf(h.x, -h.z) * 0.1f, h.y) *
                   (h.y > -0.07f && h.y < -0.05f ? 0.5f : 1.0f);
        case Part::thing:
            return m_thing.at(b.x, b.y);
        default:
            return clothAt(b);
    }
}

}  // namespace zeldepth
