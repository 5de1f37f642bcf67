#pragma once

#include "zel_effects/interFacePoint.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/tone/toneTables.h"

/// Steps that the exported skin operations share.

namespace zellab {

/// Adds the host's faces in pixels, their landmarks limited to the picture (NaN counts as 0). Without a face
/// one of zeros is added, and the count is 0.
void addLimitedFaces(CInterFacePoint& points, const ImageCoreFaceInfo* faceInfo, int width, int height);

/// The curve through (0, 0), (130, height) and (255, 255).
ByteTable brightnessCurve(int height);

/// The height of that curve by a level in steps of 5 from 137, the level truncated.
int brightnessHeight(float level);

/// Two weights that add up to 256.
struct MixWeights {
    int effect, original;

    /// @param share  0..1 is a mix; beyond, the effect is exaggerated
    explicit MixWeights(float share);

    /// The mixed byte, limited to 0..255.
    [[gnu::always_inline]] Byte operator()(int originalByte, int effectByte) const {
        return clampToByte((originalByte * original + effectByte * effect) >> 8);
    }
};

/// Moves the colours back to `before` where the mask, a plane of the picture's size, is below 255.
void mixByMask(ImageView image, ConstImageView before, PlaneView<const Byte> mask);

}  // namespace zellab
