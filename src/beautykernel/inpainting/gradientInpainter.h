#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Fills a hole with the texture of smooth blocks nearby, in the colours of its surroundings: the gradients
/// of a hole block are replaced by those of a donor block, and a Poisson solve turns them into colours again.
class GradientInpainter {
public:
    /// Repairs an RGBA picture in place.
    /// @param mask      plane of the picture's size, non-zero in the hole
    /// @param strength  percentage; the blend takes its square root; 0 does nothing
    /// @return false where a view is not valid, the mask is empty or the rectangle around the hole is
    /// narrower
    ///         than 3 pixels; true otherwise, also where the picture is smaller than a block and nothing is
    ///         done
    bool Run(ImageView image, PlaneView<const Byte> mask, int strength);

private:
    int m_blockSize = 10;  // pixels; the first run makes it odd, and so it stays
};

}  // namespace zellab
