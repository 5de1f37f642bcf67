#pragma once

#include "faceShape.h"

namespace zel::drawing {

/// How the head stands before the camera: turns, tilts and rolls it about the point between the eyes, and
/// places it in the picture. Parallel projection.
class HeadPose {
public:
    HeadPose(const Scene& scene, const FaceShape& shape);

    /// Pixel of a point of the head, in mm.
    Vec2 toPicture(Vec3 head) const;
    /// Pixel of a point of the face's surface.
    Vec2 toPicture(Vec2 face) const { return toPicture({face.x, face.y, m_shape->coarseRelief(face)}); }
    /// The surface point seen at a pixel; also told for pixels beside the head.
    Vec2 toFace(Vec2 pixel) const;
    /// Pixel as mm about the point between the eyes, upright with the picture.
    Vec2 toUpright(Vec2 pixel) const;
    Vec2 fromUpright(Vec2 mm) const;

    /// A direction before the camera, told in the head's own axes.
    Vec3 toHead(Vec3 direction) const;
    Vec3 toCamera(Vec3 direction) const;
    float pixelsPerMm() const { return m_scale; }
    float yaw() const { return m_yaw; }
    float sineYaw() const { return m_sineYaw; }
    float sineRoll() const { return m_sineRoll; }
    float cosineRoll() const { return m_cosineRoll; }

private:
    const FaceShape* m_shape;
    Vec2 m_centre;
    float m_scale, m_yaw;
    float m_sineYaw, m_cosineYaw, m_sineTilt, m_cosineTilt, m_sineRoll, m_cosineRoll;
};

/// The 83 landmarks in the library's order and the face's rectangle, as shares of a picture of that size.
Face measureFace(const FaceShape& shape, const HeadPose& pose, int width, int height);

}  // namespace zel::drawing
