#pragma once

#include "litHead.h"

namespace zel::drawing {

/// Everything a painter of surfaces needs to know, decided once per picture.
struct Studio {
    const Sitter& sitter;
    const Scene& scene;
    const FaceShape& shape;
    const HeadPose& pose;
    const LitHead& lit;
    float pixelMm;  // size of a pixel on the head
};

/// Coverage of an edge: 1 where `inside` (mm) is half a pixel or more, 0 where it is half a pixel out.
/// `softness` in mm widens the edge.
inline float edgeCoverage(float inside, float pixelMm, float softness = 0) {
    return clamp01(0.5f + inside / std::max(pixelMm, softness));
}

/// Reflectance of the facial skin: blood, melanin, pores, stubble, the thinner skin about the eyes.
Colour skinReflectance(const Studio& studio, Vec2 face);

/// Light that leaves skin of that reflectance. `shadow` is the share of the lamp that hair takes away,
/// `gloss` a factor on the shine.
Colour shadeSkin(const Studio& studio, const LitPoint& point, Vec2 face, Colour reflectance, float shadow,
                 float gloss);

/// Skin of neck and ears, whose normal is told by the caller, in camera axes.
Colour shadePlainSkin(const Studio& studio, Vec2 texture, Vec3 normal, float keyVisible, float open,
                      float redness);

/// Colours the lips into `reflectance` and returns their coverage; `gloss` gets their shine.
float paintLips(const Studio& studio, Vec2 face, Colour& reflectance, float& gloss);

/// Darkens nostrils and the line between the lips in finished skin.
Colour paintOpenings(const Studio& studio, Vec2 face, Colour skin);

}  // namespace zel::drawing
