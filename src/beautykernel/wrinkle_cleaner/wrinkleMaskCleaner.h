#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Smooths wrinkles under a painted mask: the gradients under the mask are replaced by those of quiet
/// neighbouring blocks, whose size follows the picture's, and the colours are solved again.
class WrinkleMaskCleaner {
public:
    /// Works on an RGBA picture in place.
    /// @param mask      plane of the picture's size; 255 on the wrinkles
    /// @param strength  percentage; the blend takes its square root; 0 does nothing
    /// @return false on null data, a shorter side below 20 or a mask without a 255; true otherwise
    bool Run(ImageView image, PlaneView<const Byte> mask, int strength);

    /// Block side in pixels for a picture whose shorter side has that many: 5 at smallest, 55 at largest.
    static int blockSizeFor(int shorterSide);
};

}  // namespace zellab
