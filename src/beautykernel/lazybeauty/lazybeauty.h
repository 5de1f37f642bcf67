#pragma once

#include "beautykernel/skintools/overlayTable.h"
#include "facepoints/faceData.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// What CLazyBeauty does.
struct LazyBeautyParams {
    bool autoLevels = true;   // stretch the levels first
    bool repairSpots = true;  // repaint small dark spots
    int smoothLevel = 3;      // 0..7, strength of the lift of the shadows
    int overlayLevel = 3;     // 0..10, strength of the overlay; higher counts as 10
};

/// The one-call skin smoother: automatic levels, spot repair, a skin mask from colour, a lift of the shadows
/// under that mask, a blur that keeps edges, and a final overlay and sharpening. What decides runs on a copy
/// of at most 480 by 640 pixels; the full picture is touched by the lift, the spots, the mix and the
/// sharpening alone.
class CLazyBeauty {
public:
    /// Works on an RGBA picture in place; byte 3 stays.
    /// @param face  the record of the face that decides, in pixels, or null; its box may leave the picture
    /// @return false, the picture untouched, where the overlay table is missing (logged) or the picture is
    ///         empty
    bool run(ImageView image, const LazyBeautyParams& params, const FaceData* face);

private:
    OverlayTable m_overlay;  // loaded by the first run, kept for the object's life
};

}  // namespace zellab
