#pragma once

#include <optional>

#include "facepoints/faceData.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/tone/levels.h"

namespace zellab {

/// What CFaceBeauty does. Up to 640 pixels a side `alternateFinish` asks for the final colour correction, and
/// `edgeFilter`, the strengths, the levels and the caller's mask are not read.
struct FaceBeautyParams {
    bool autoLevels = false;       // stretch the levels first
    bool repairSpots = false;      // repaint small dark spots
    bool alternateFinish = false;  // finish with the airy look in place of the portrait's
    bool edgeFilter = false;       // smooth the lightness once more, along edges
    float toneStrength = 0.0f;     // 0..1, of the portrait look; up to 0.01 a fainter look is applied
    float smoothStrength = 0.0f;   // 0..1, of the smoothing
    std::optional<LevelsParams> levels = std::nullopt;  // of the skin mask
};

/// The main retouch. Pictures up to 640 pixels on each side are smoothed in their colours; larger ones decide
/// on a copy of that size and smooth their lightness alone, at full size.
class CFaceBeauty {
public:
    /// Works on an RGBA picture in place. Byte 3 stays up to 640 pixels a side and becomes 255 beyond.
    /// @param userMask  plane of any size that takes the place of the skin mask where the smoothing asks for
    ///                  it, or an empty one
    /// @param face      the record of the face that decides, whose box is limited to the picture, or null
    /// @return false for an empty picture, which stays untouched, and where the overlay table is missing
    ///         (logged): then levels and spots are done and nothing else
    bool Run(ImageView image, PlaneView<const Byte> userMask, FaceData* face, const FaceBeautyParams& params);

private:
    bool Run8kelyy(ImageView image, PlaneView<const Byte> userMask, const FaceData* face,
                   const FaceBeautyParams& params, int smallWidth, int smallHeight, float scale);
    bool Run8kelxx(ImageView image, const FaceData* face, const FaceBeautyParams& params);
    void RevertDetail(ImageView image, PlaneView<const Byte> detail, PlaneView<const Byte> mask,
                      float amount);
};

}  // namespace zellab
