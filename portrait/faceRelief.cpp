#include "faceShape.h"

namespace zel::drawing {

/// The skull without features: round at the sides, flat down the front, with a tight turn under the jaw.
float FaceShape::dome(Vec2 p) const {
    const Polar at = polar(p);
    const float share = std::min(at.share, 0.997f);
    const float down = smoothStep(0.25f, 0.95f, sineOf(at.angle)),
                up = smoothStep(0.3f, 1.0f, -sineOf(at.angle));
    const float exponent = mix(mix(2.7f, 2.5f, up), 5.5f, down);
    const float depth = mix(72.0f, 42.0f, down);
    // Beyond the outline the surface goes on falling away, so that no light leaks in from there.
    const float beyond = std::max(0.0f, at.share - share);
    return depth * (std::sqrt(1.0f - powerOf(share, exponent)) - 1.0f) - 160.0f * beyond;
}

float FaceShape::noseRelief(Vec2 p) const {
    const float x = std::fabs(p.x), tipY = nose.tipY;
    if (x > 45 || p.y < -35 || p.y > 75) return 0;
    const float rise = smoothStep(-16, tipY, p.y);
    const float fall = 1.0f - smoothStep(tipY - 1.0f, nose.baseY + 5.5f, p.y);
    const float ridge =
        (4.0f * smoothStep(-22, -4, p.y) + 13.5f * nose.bridge * (0.35f * rise + 0.65f * rise * rise)) * fall;
    const float width = mix(7.0f, 9.2f, smoothStep(0, tipY, p.y)) * mix(1.0f, nose.wingX / 16.5f, 0.5f);
    // A narrow back on broad flanks that run out into the cheeks.
    float z = ridge * (0.66f * bell(x, 0, width) + 0.34f * bell(x, 0, 2.2f * width));
    z += 6.5f * nose.tip * bell(p.x, p.y, 0, tipY, 8.0f, 7.5f);
    // The wings, the pit behind each of them, and the nostrils.
    const float wing = nose.wingX - 4.5f;
    z += 9.5f * bell(x, p.y, wing + 0.5f, nose.wingY, 4.6f, 5.6f);
    z -= 2.0f * bell(x, p.y, nose.wingX + 3.0f, nose.wingY - 1, 2.6f, 7.0f);
    z -= 1.6f * bell(x, p.y, wing - 4.0f, nose.wingY - 5.0f, 2.4f, 5.0f);
    z -= 4.0f * bell(x, p.y, wing * 0.62f, nose.baseY - 1.2f, 3.6f, 2.0f);
    return z;
}

float FaceShape::mouthRelief(Vec2 p) const {
    const float t = p.x / mouth.halfWidth, y = p.y, cy = mouth.centreY;
    float z = 4.5f * bell(p.x, y, 0, cy - 1, 30, 22);
    // The groove from nose to lip, between its two ridges.
    const float grooveY = mix(nose.baseY, mouth.upperEdge(0), 0.5f);
    z -= 1.5f * bell(p.x, y, 0, grooveY, 3.2f, 7.0f);
    z += 0.8f * bell(std::fabs(p.x), y, 5.2f, grooveY + 1, 2.4f, 7.0f);
    if (std::fabs(t) < 1.3f) {
        const float line = mouth.line(t), body = std::sqrt(std::max(0.0f, 1.0f - t * t * 0.9f));
        const float upperMiddle = mix(line, mouth.upperEdge(t), 0.45f),
                    lowerMiddle = mix(line, mouth.lowerEdge(t), 0.45f);
        z += 2.6f * body * bell(y, upperMiddle, 0.62f * mouth.upper);
        z += 4.2f * body * bell(y, lowerMiddle, 0.60f * mouth.lower);
        z -= 2.4f * bell(y, line, 1.3f) * smoothStep(1.15f, 0.8f, std::fabs(t));
    }
    // Corners lie in a small pit; below the lower lip the chin's groove.
    const float cornerY = mouth.line(1);
    z -= 1.5f * 0.7f * bell(std::fabs(p.x), y, mouth.halfWidth + 1.5f, cornerY + 0.5f, 4.5f, 5.0f);
    z -= 3.2f * bell(p.x, y, 0, mouth.lowerEdge(0) + 6.0f, 17, 5.0f);
    return z;
}

float FaceShape::relief(Vec2 p) const {
    const float x = std::fabs(p.x), y = p.y;
    float z = dome(p) + noseRelief(p) + mouthRelief(p);
    // Brow ridge, sockets, and the ball of the eye under its lids.
    z += mix(2.2f, 4.6f, m_masculine) * bell(x, y, 24, -17, 24, 8.5f);
    const float eyeX = std::fabs(eyes[1].centre.x);
    z -= 8.5f * bell(x, y, eyeX - 3, -1.5f, 19, 12);
    z -= 5.0f * bell(x, y, 15, -4, 7, 11);
    z += 6.8f * bell(x, y, eyeX, 0.5f, 13.5f, 9.0f);
    // Hollow of the tear trough, apples of the cheeks, cheekbones, temples, chin.
    z -= 1.4f * bell(x, y, 20, 14, 9, 6);
    const float apple = 4.2f * m_cheeks * (1.0f + 0.7f * clamp01(mouth.smile));
    z += apple * bell(x, y, 38, 30 - 4 * clamp01(mouth.smile), 19, 17);
    z += 3.0f * bell(x, y, 52, 17, 13, 10);
    z -= 1.6f * mix(0.4f, 1.2f, m_masculine) * bell(x, y, 50, 55, 17, 22);
    z -= 3.0f * bell(x, y, 62, -30, 14, 22);
    z += 6.0f * bell(p.x, y, 0, m_chinY - 12, mix(13.0f, 17.0f, m_masculine), 11);
    z += 2.0f * bell(p.x, y, 0, -62, 42, 24);
    // Fold from the nose's wing to beside the mouth: the cheek stands a little above the lip.
    const float along = clamp01((y - nose.wingY) / (mouth.line(1) + 6 - nose.wingY));
    const float foldX = mix(nose.wingX + 3, mouth.halfWidth + 9, powerOf(along, 0.8f));
    const float fade = smoothStep(0, 0.25f, along) * smoothStep(1.0f, 0.6f, along);
    z += 1.1f * m_foldDepth * fade * (smoothStep(foldX - 2.6f, foldX + 2.6f, x) - 0.5f) * bell(x, foldX, 14);
    return z;
}

float FaceShape::coarseRelief(Vec2 p) const {
    const float x = std::min(std::fabs(p.x), 95.0f), y = std::min(std::max(p.y, -140.0f), 130.0f);
    return -0.0078f * x * x - 0.0022f * square(y - 20) + 19.0f * bell(p.x, p.y, 0, nose.tipY - 2, 15, 19);
}

}  // namespace zel::drawing
