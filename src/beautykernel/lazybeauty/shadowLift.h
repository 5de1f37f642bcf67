#pragma once

#include <vector>

#include "beautykernel/skintools/skinMaskFromColor.h"
#include "zellab/imageproc/imageView.h"

namespace zellab {

/// Lifts the shadows of a picture along a curve, by a weight a pixel.
class ShadowLift {
public:
    /// @param skin         mean colour of the skin; its brightness decides how far the middle is raised
    /// @param smoothLevel  0..7, limited; 0 lifts nothing
    ShadowLift(const MeanColour& skin, int smoothLevel);

    /// Lifts a row of RGBA pixels in place; byte 3 stays. @param weight  one byte a pixel
    void row(Byte* pixels, const Byte* weight, int width) const;

private:
    std::vector<Byte> m_lifted;  // of every weight and sample: weight * 256 + sample
};

}  // namespace zellab
