#include "headPose.h"

namespace zel::drawing {

HeadPose::HeadPose(const Scene& scene, const FaceShape& shape)
    : m_shape(&shape),
      m_centre(scene.centre),
      m_scale(scene.pixelsPerMm),
      m_yaw(scene.yaw),
      m_sineYaw(sineOf(scene.yaw)),
      m_cosineYaw(cosineOf(scene.yaw)),
      m_sineTilt(sineOf(scene.tilt)),
      m_cosineTilt(cosineOf(scene.tilt)),
      m_sineRoll(sineOf(scene.roll)),
      m_cosineRoll(cosineOf(scene.roll)) {}

Vec3 HeadPose::toCamera(Vec3 v) const {
    const float x = v.x * m_cosineYaw + v.z * m_sineYaw, z = v.z * m_cosineYaw - v.x * m_sineYaw;
    const float y = v.y * m_cosineTilt - z * m_sineTilt;
    return {x * m_cosineRoll - y * m_sineRoll, x * m_sineRoll + y * m_cosineRoll,
            z * m_cosineTilt + v.y * m_sineTilt};
}

Vec3 HeadPose::toHead(Vec3 v) const {
    const float x = v.x * m_cosineRoll + v.y * m_sineRoll, y = v.y * m_cosineRoll - v.x * m_sineRoll;
    const float headY = y * m_cosineTilt + v.z * m_sineTilt, z = v.z * m_cosineTilt - y * m_sineTilt;
    return {x * m_cosineYaw - z * m_sineYaw, headY, z * m_cosineYaw + x * m_sineYaw};
}

Vec2 HeadPose::toPicture(Vec3 head) const {
    const Vec3 camera = toCamera(head);
    return m_centre + Vec2{camera.x, camera.y} * m_scale;
}

Vec2 HeadPose::toUpright(Vec2 pixel) const {
    const Vec2 d = (pixel - m_centre) * (1.0f / m_scale);
    return {d.x * m_cosineRoll + d.y * m_sineRoll, d.y * m_cosineRoll - d.x * m_sineRoll};
}

Vec2 HeadPose::fromUpright(Vec2 mm) const {
    return m_centre +
           Vec2{mm.x * m_cosineRoll - mm.y * m_sineRoll, mm.x * m_sineRoll + mm.y * m_cosineRoll} * m_scale;
}

Vec2 HeadPose::toFace(Vec2 pixel) const {
    // The coarse relief is so gentle that each round more than halves the error.
    constexpr int kRounds = 7;
    const Vec2 seen = toUpright(pixel);
    Vec2 face = seen;
    for (int i = 0; i < kRounds; ++i) {
        const float z = m_shape->coarseRelief(face);
        face.x = (seen.x - z * m_sineYaw) / m_cosineYaw;
        face.y = (seen.y + (z * m_cosineYaw - face.x * m_sineYaw) * m_sineTilt) / m_cosineTilt;
    }
    return face;
}

}  // namespace zel::drawing
