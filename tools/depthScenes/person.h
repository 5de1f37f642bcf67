#pragma once

#include "pattern.h"

namespace zeldepth {

enum class Part { skin, hair, cloth, hat, thing, parts };

/// A person as solids, in metres about the middle of the head: x to the picture's right, y down, z away from
/// the camera. The head and the body each turn about the neck; at rest they face the camera.
class Person {
public:
    explicit Person(RandomSource& random);

    struct Nearest {
        float distance = 1e3f;
        Part part = Part::skin;
    };
    /// Distance to the person, and the part that is nearest.
    Nearest nearest(Vec3 p) const;
    /// What colour the surface has there; `facing` is its normal.
    Colour colourAt(Vec3 p, Vec3 facing, Part part) const;
    /// How much the surface shines, 0 to 1.
    float glossOf(Part part) const;

private:
    enum class HairCut { none, close, short_, bob, long_, round, bun, cuts };
    enum class Hat { none, cap, brimmed, knitted, scarf, peaked, hats };
    enum class Pose { hanging, crossed, atFace, onHips, holding, raised, poses };

    struct Turn {
        float sine = 0, cosine = 1;
        static Turn by(float degrees);
    };

    void chooseHead(RandomSource& random);
    void chooseHair(RandomSource& random);
    void chooseBody(RandomSource& random);
    void poseArms(RandomSource& random);

    Vec3 toHead(Vec3 p) const;
    Vec3 toBody(Vec3 p) const;
    float headSolid(Vec3 h) const;
    float hairSolid(Vec3 h, Vec3 b) const;
    float hatSolid(Vec3 h) const;
    float torsoSolid(Vec3 b) const;
    float collarSolid(Vec3 b) const;
    void addArms(Vec3 b, Nearest& found) const;

    Colour skinAt(Vec3 h, Vec3 facing) const;
    Colour faceAt(Vec3 h, Colour skin) const;
    Colour hairAt(Vec3 h) const;
    Colour clothAt(Vec3 b) const;

    Turn m_headYaw, m_headPitch, m_headRoll, m_bodyYaw;
    float m_headSize = 1, m_jaw = 1, m_nose = 1, m_bulk = 1, m_shoulders = 0.19f, m_slope = 0.25f;
    float m_eyes = 1, m_brow = 1, m_smile = 0, m_open = 0, m_beard = 0, m_lipstick = 0;
    int m_glasses = 0;  // 0 none, 1 rims, 2 dark
    HairCut m_cut = HairCut::short_;
    Hat m_hat = Hat::none;
    float m_hairThick = 0.015f, m_hairline = 0, m_hairLength = 0.2f, m_waves = 0;
    Colour m_skin, m_hair, m_iris, m_lips, m_rims;
    Pattern m_hatPattern, m_coat, m_shirt, m_tie, m_thing;
    bool m_coatOpen = false, m_hasTie = false, m_bareArms = false, m_bareShoulders = false, m_collar = false;
    int m_badges = 0;
    float m_neckline = 0.05f, m_opening = 0.3f;
    std::uint32_t m_seed = 1;

    struct Arm {
        Vec3 shoulder, elbow, hand;
    };
    Arm m_arms[2];
    bool m_holding = false;
    int m_thingKind = 0;
    Vec3 m_thingAt, m_thingSize;
};

}  // namespace zeldepth
