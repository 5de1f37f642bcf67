#pragma once

#include <vector>

#include "pattern.h"

namespace zeldepth {

/// A solid of a place: box, ellipsoid or upright cylinder, turned about the vertical.
struct Solid {
    enum class Kind { box, ellipsoid, cylinder };
    Kind kind = Kind::box;
    Vec3 centre, half{1, 1, 1};
    float sine = 0, cosine = 1;
    Pattern pattern;
    float leafy = 0;  // share of the surface that is holes, as in a tree's crown
    float glow = 0;   // light of its own
    std::uint32_t seed = 1;
};

/// How far the sky is.
inline constexpr float kNever = 1e9f;

/// Where a ray meets a place.
struct Meeting {
    float along = kNever;
    Vec3 normal;
    Colour colour;
    float glow = 0;
};

/// A room, a street, a field and the like, in metres: x to the picture's right, y down, z away; the camera
/// stands at the origin.
class Place {
public:
    explicit Place(RandomSource& random);

    Meeting meet(Vec3 origin, Vec3 direction) const;
    Colour colourSeen(Vec3 origin, Vec3 direction, float& along) const;
    float pitch() const { return m_pitch; }
    float view() const { return m_view; }

private:
    void room(RandomSource& random);
    void street(RandomSource& random);
    void field(RandomSource& random);
    void tableTop(RandomSource& random);
    void wall(RandomSource& random);
    void heap(RandomSource& random);
    void addSolid(RandomSource& random, Vec3 centre, Vec3 half);
    void addTree(RandomSource& random, float x, float z);
    void addShelf(RandomSource& random, Vec3 centre, Vec3 half, float yaw);
    bool open(Vec3 from, Vec3 towards) const;
    Colour skyAt(Vec3 direction) const;

    std::vector<Solid> m_solids;
    bool m_hasGround = false, m_inside = false;
    float m_ground = 1.5f;  // metres below the camera
    Pattern m_groundPattern;
    Vec3 m_lampTowards{0, -1, 0};  // direction outside, place of the lamp inside
    Colour m_lamp, m_ambient, m_skyTop, m_skyLow, m_cloud;
    float m_clouds = 0, m_haze = 0, m_pitch = 0, m_view = 0.6f;
    std::uint32_t m_seed = 1;
};

}  // namespace zeldepth
