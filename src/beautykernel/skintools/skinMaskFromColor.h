#pragma once

#include "facepoints/faceData.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// A mean colour.
struct MeanColour {
    int r = 160, g = 130, b = 126;  // skin where nothing else is known
    /// Brightness with the weights 0.3, 0.59, 0.11, truncated.
    int brightness() const;
};

/// How much red outweighs blue, 0..255: 2 r, at most 255, less half of b.
inline int redOverBlue(int r, int b) {
    const int value = (r < 128 ? 2 * r : 255) - b / 2;
    return value > 0 ? value : 0;
}

struct SkinColourMask {
    Plane<Byte> mask;  // of the picture's size, 255 on skin
    MeanColour mean;   // of the pixels that look like skin
};

/// Blur radii of the mask for pictures whose shorter side is below 200, below 500, and from 500 up.
struct MaskBlurRadii {
    int small, middle, large;
};

/// Finds skin by red and blue alone: the mean of the reddish pixels of the first face, or of the whole
/// picture without a face, and then every pixel by its distance from that mean.
SkinColourMask skinMaskFromColor(ConstImageView image, int faceCount, const FaceData* faces,
                                 const MaskBlurRadii& radii);

}  // namespace zellab
