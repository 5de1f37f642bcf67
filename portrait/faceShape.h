#pragma once

#include <array>

#include "sitter.h"

/// The geometry of a face, in millimetres on its own front plane: the origin lies between the eyes, x runs to
/// the picture's right, y down. Everything drawn and every landmark is derived from these curves.

namespace zel::drawing {

/// A smooth curve through `count` evenly spaced values at t in [0, 1].
float curveThrough(const float* values, int count, float t);

/// One eye. t runs along the opening, from -1 at the inner corner to 1 at the outer one.
struct EyeShape {
    Vec2 centre;     // middle of the opening's chord
    float side = 1;  // -1 for the eye at the picture's left
    float halfWidth = 15, upperRise = 6.3f, lowerDrop = 4.2f, slant = 0, open = 1;
    Vec2 iris;  // centre
    float irisRadius = 5.9f, pupilRadius = 2.2f;

    float t(float x) const { return (x - centre.x) * side / halfWidth; }
    float x(float along) const { return centre.x + side * along * halfWidth; }
    float lowerLid(float along) const;
    float upperLid(float along) const;
    /// The lid line of the eye held fully open, about which the crease runs.
    float openUpperLid(float along) const;
    /// Distance in mm from inside (above 0) to the nearer lid; below 0 outside.
    float insideBy(Vec2 p) const;
};

struct BrowShape {
    float side = 1;
    float innerX = 11, outerX = 55;
    std::array<float, 5> middle{}, halfThickness{};  // along the brow, inner to outer

    float x(float along) const { return side * mix(innerX, outerX, along); }
    float along(float px) const { return (px * side - innerX) / (outerX - innerX); }
    float y(float t) const { return curveThrough(middle.data(), 5, t); }
    float half(float t) const { return std::max(0.3f, curveThrough(halfThickness.data(), 5, t)); }
};

struct NoseShape {
    float tipY = 36.5f, baseY = 45.5f, wingY = 40, wingX = 16.5f, bridge = 1, tip = 1;
};

/// The mouth. t runs from -1 at the picture's left corner to 1 at the right one.
struct MouthShape {
    float centreY = 66, halfWidth = 25, upper = 6.5f, lower = 9.5f, smile = 0, gap = 0.3f;

    float line(float t) const;       // where the lips meet
    float upperEdge(float t) const;  // top of the upper lip
    float lowerEdge(float t) const;  // bottom of the lower lip
    float insideBy(Vec2 p) const;    // mm inside the lips, below 0 outside
};

class FaceShape {
public:
    explicit FaceShape(const Sitter& sitter);

    EyeShape eyes[2];  // picture's left, right
    BrowShape brows[2];
    NoseShape nose;
    MouthShape mouth;
    Vec2 earCentre{75, 12};  // of the right ear; mirrored for the left
    Vec2 earHalf{9.8f, 27};

    /// Where p stands between the head's middle (0) and its outline (1), and in which direction.
    struct Polar {
        float share = 0, angle = 0, distance = 0;  // distance: mm outside the outline, below 0 inside
    };
    Polar polar(Vec2 p) const;

    /// The head's outline in a direction: 0 to the picture's right, pi / 2 down.
    float outlineRadius(float angle) const;
    Vec2 outlinePoint(float angle) const;
    float chinY() const { return m_chinY; }
    float crownY() const { return m_crownY; }

    /// Depth towards the camera in mm, in detail: what light falls on.
    float relief(Vec2 p) const;
    /// The same without steep places: what turns with the head.
    float coarseRelief(Vec2 p) const;

    static constexpr Vec2 kMiddle{0, 10};  // about which the outline is told

private:
    void layOutline(const Sitter& sitter);
    void layFeatures(const Sitter& sitter);
    float dome(Vec2 p) const;
    float noseRelief(Vec2 p) const;
    float mouthRelief(Vec2 p) const;

    static constexpr int kOutlineSteps = 360;
    std::array<float, kOutlineSteps + 1> m_radius{};  // from straight up to straight down
    float m_chinY = 115, m_crownY = -121;
    float m_masculine = 0.5f, m_cheeks = 1, m_foldDepth = 1;
};

}  // namespace zel::drawing
