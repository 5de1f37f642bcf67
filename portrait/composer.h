#pragma once

#include "background.h"
#include "defects.h"
#include "develop.h"
#include "hairPaint.h"
#include "strokes.h"

namespace zel::drawing {

/// Puts the picture together pixel by pixel, from the background forwards, and notes the truth as it goes.
class Composer {
public:
    explicit Composer(const PortraitParams& params);

    /// Landmarks and irises.
    void measure(Portrait& portrait) const;
    /// Writes one pixel of every picture, mask and the depth. Pixels may be composed in any order and at
    /// once.
    void compose(int x, int y, Portrait& portrait) const;
    /// Fills in the moles that the finished masks show.
    void listMoles(Portrait& portrait) const;

private:
    struct Pixel;
    struct Face;
    float hairShadowAt(Vec2 pixel) const;
    void softenHairShadow();
    void layBody(Pixel& pixel) const;
    void layFace(Pixel& pixel) const;
    Face paintFace(Vec2 at, float shadow) const;
    void laySheet(Pixel& pixel, const StrokeSheet& sheet, float& cover) const;
    void store(const Pixel& pixel, Portrait& portrait) const;

    Sitter m_sitter;
    Scene m_scene;
    FaceShape m_shape;
    HeadPose m_pose;
    LitHead m_lit;
    Studio m_studio;
    Defects m_defects;
    Background m_background;
    HairStrokes m_hair;
    StrokeSheet m_backHair, m_frontHair, m_brows, m_lashes;
    Developer m_developer;
    int m_shadowFactor = 1, m_shadowWidth = 1, m_shadowHeight = 1;  // the shadow is soft: a small plane does
    std::vector<float> m_hairShadow;
};

}  // namespace zel::drawing
