#pragma once

#include <vector>

#include "libzel/faces/faceDetector.h"
#include "libzel/faces/lumaPyramid.h"
#include "zel_effects/zel_records.h"

namespace zel {

/// A small copy of a grey picture, turned about its middle; beyond the edge the edge goes on.
class TurnedLuma {
public:
    /// @param turn  radians; faces that lean by it, clockwise as seen, stand upright here
    TurnedLuma(const LumaPyramid& picture, float turn);

    int width() const { return m_width; }
    int height() const { return m_height; }
    const std::vector<unsigned char>& luma() const { return m_luma; }

    /// Where a box of the copy lies in the picture.
    FaceBox inPicture(const FaceBox& box) const;

private:
    zellab::Vector2f placeInPicture(zellab::Vector2f p) const;

    float m_turn, m_scale = 1;  // pixels of the picture per pixel of the copy
    zellab::Vector2f m_middle;  // of the picture
    int m_width = 0, m_height = 0;
    std::vector<unsigned char> m_luma;
};

}  // namespace zel
