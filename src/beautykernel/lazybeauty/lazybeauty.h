#pragma once

#include "beautykernel/skintools/overlayTable.h"
#include "facepoints/faceData.h"

namespace zellab {

/// The one-call skin smoother: automatic levels, spot repair, a skin mask from colour, a lift of the shadows
/// under that mask, a blur that keeps edges, and a final overlay and sharpening. What decides runs on a copy
/// of at most 480 by 640 pixels; the full picture is touched by the lift, the spots, the mix and the
/// sharpening alone.
class CLazyBeauty {
public:
    /// Works on an RGBA picture in place; byte 3 stays.
    /// @param smoothLevel   0..7, strength of the lift of the shadows
    /// @param overlayLevel  0..10, strength of the overlay; higher counts as 10
    /// @param faceCount     at most 8 faces are read, and the first one alone decides
    /// @param faces         records in pixels; their boxes may leave the picture
    /// @return false, the picture untouched, where the overlay table is missing (logged) or the picture is
    /// empty
    bool run(unsigned char* image, int width, int height, bool autoLevels, bool repairSpots, int smoothLevel,
             int overlayLevel, int faceCount, const FaceData* faces);

private:
    OverlayTable m_overlay;  // loaded by the first run, kept for the object's life
};

}  // namespace zellab
