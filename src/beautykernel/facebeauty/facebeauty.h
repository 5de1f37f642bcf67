#pragma once

#include "facepoints/faceData.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// What CFaceBeauty does. Up to 640 pixels a side `alternateFinish` asks for the final colour correction, and
/// `edgeFilter`, the strengths, the levels and the caller's mask are not read.
struct FaceBeautyParams {
    unsigned char autoLevels = 0;       // stretch the levels first
    unsigned char repairSpots = 0;      // repaint small dark spots
    unsigned char alternateFinish = 0;  // finish with the airy look in place of the portrait's
    unsigned char edgeFilter = 0;       // smooth the lightness once more, along edges
    float toneStrength = 0.0f;          // 0..1, of the portrait look; up to 0.01 a fainter look is applied
    float smoothStrength = 0.0f;        // 0..1, of the smoothing
    /// Input black, gamma * 100, input white, output black and white of the skin mask; null leaves it alone.
    const int* levels = nullptr;
};

/// The main retouch. Pictures up to 640 pixels on each side are smoothed in their colours; larger ones decide
/// on a copy of that size and smooth their lightness alone, at full size.
class CFaceBeauty {
public:
    /// Works on an RGBA picture in place. Byte 3 stays up to 640 pixels a side and becomes 255 beyond.
    /// @param userMask   plane of maskWidth by maskHeight that takes the place of the skin mask where the
    ///                   smoothing asks for it, or null
    /// @param faceCount  records in `faces`; the first one alone decides. Their boxes are limited to the
    ///                   picture
    /// @return false for a null picture, a size below 1 or null parameters, the picture untouched; and where
    ///         the overlay table is missing (logged): then levels and spots are done and nothing else
    bool Run(unsigned char* image, int width, int height, const unsigned char* userMask, int maskWidth,
             int maskHeight, int faceCount, FaceData* faces, const FaceBeautyParams* params);

private:
    bool Run8kelyy(ImageView image, PlaneView<const Byte> userMask, const FaceData* face,
                   const FaceBeautyParams& params, int smallWidth, int smallHeight, float scale);
    bool Run8kelxx(ImageView image, const FaceData* face, const FaceBeautyParams& params);
    void RevertDetail(ImageView image, PlaneView<const Byte> detail, PlaneView<const Byte> mask,
                      float amount);
};

}  // namespace zellab
