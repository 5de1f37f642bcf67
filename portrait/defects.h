#pragma once

#include <array>
#include <vector>

#include "skinPaint.h"

namespace zel::drawing {

/// The layers that the clean picture lacks, in the order in which they are laid.
enum class Defect { dullSkin, darkCircles, freckles, wrinkles, scratches, moles };
inline constexpr std::size_t kDefects = 6;

/// Cover of each layer at a point, in whole 255ths so that a mask of bytes tells it exactly.
using DefectCover = std::array<float, kDefects>;

/// A line in the skin, in mm on the face.
struct SkinLine {
    std::vector<Vec2> points;
    float width = 0.7f, strength = 1;
    Vec2 low, high;  // box with room for the width
};

struct Mole {
    Vec2 centre;
    float radius = 1, darkness = 0.7f;
};

class Defects {
public:
    Defects(const PortraitParams& params, const Studio& studio);

    bool any() const { return m_any; }
    DefectCover coverAt(Vec2 face) const;
    Colour apply(const DefectCover& cover, Vec2 face, Colour skin) const;
    const std::vector<Mole>& moles() const { return m_moles; }

private:
    void placeMoles(int count);
    void placeScratches(int count);
    void placeWrinkles();
    void addLine(std::vector<SkinLine>& lines, std::vector<Vec2> points, float width, float strength);
    float frecklesAt(Vec2 face) const;
    float darkCircleAt(Vec2 face) const;
    float molesAt(Vec2 face) const;
    bool onPlainSkin(Vec2 face, float margin) const;

    const Studio& m_studio;
    float m_freckles, m_wrinkles, m_darkCircles, m_dullSkin;
    bool m_any = false;
    std::vector<Mole> m_moles;
    std::vector<SkinLine> m_wrinkleLines, m_scratchLines;
};

}  // namespace zel::drawing
