#pragma once

#include <vector>

#include "headPose.h"

namespace zel::drawing {

/// How light meets the head at one point of its surface, in the head's own axes.
struct LitPoint {
    Vec3 normal;
    float keyVisible = 1;  // share of the lamp that is not shadowed
    float open = 1;        // share of the surroundings that the point sees
    Colour light;          // what the skin receives, scattered under its surface
    float relief = 0;      // mm towards the camera
};

/// The head's light, computed once on a fine grid over the face: normals from the relief, shadows cast along
/// it, hollows darkened, and the scattering of light inside skin, which reaches furthest in red.
class LitHead {
public:
    LitHead(const FaceShape& shape, const HeadPose& pose, const Scene& scene);

    LitPoint at(Vec2 face) const;
    Vec3 lamp() const { return m_lamp; }      // towards the lamp, head axes
    Vec3 camera() const { return m_camera; }  // towards the camera, head axes

private:
    void raise(const FaceShape& shape);
    void bend();
    void occlude();
    void castShadows();
    void illuminate(const Scene& scene);
    void scatter();
    float heightAt(float column, float row) const;

    static constexpr float kStep = 0.5f, kLeft = -90, kTop = -142;  // mm
    static constexpr int kWidth = 361, kHeight = 560;
    static std::size_t index(int x, int y) {
        return static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x);
    }

    Vec3 m_lamp, m_camera;
    std::vector<float> m_height;
    std::vector<LitPoint> m_points;
};

}  // namespace zel::drawing
