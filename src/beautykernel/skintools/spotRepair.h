#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// A face box in pixels; all -1 where there is no face.
struct SpotBox {
    int left = -1, top = -1, width = -1, height = -1;
};

/// Which spots are sought.
struct SpotSearch {
    int firstRadius = 1, radiusCount = 2;  // from the largest radius down to the first; above 2 none exists
    /// One of less than 8 percent of the picture leaves the first radius alone, one of less than 2 percent
    /// none; one that leaves the picture counts as none.
    SpotBox face;
};

/// Finds small dark isolated blobs on skin and repaints each by a tiny Poisson solve against the pixels
/// around it, with a faint fixed texture in place of a flat fill.
class CSpotRepair {
public:
    /// Repairs an RGBA picture in place.
    /// @param skinMask  plane of the picture's size; spots are sought where it is above 100
    /// @param spotMask  plane of the picture's size that receives 255 on every repaired cell and 0 elsewhere,
    ///                  or an empty one
    /// @return false where the picture or the skin mask is not valid
    static bool Run(ImageView image, PlaneView<const Byte> skinMask, const SpotSearch& search,
                    PlaneView<Byte> spotMask);
};

}  // namespace zellab
