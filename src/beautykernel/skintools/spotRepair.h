#pragma once

namespace zellab {

/// A face box in pixels; all -1 where there is no face.
struct SpotBox {
    int left = -1, top = -1, width = -1, height = -1;
};

/// Finds small dark isolated blobs on skin and repaints each by a tiny Poisson solve against the pixels
/// around it, with a faint fixed texture in place of a flat fill.
class CSpotRepair {
public:
    /// Repairs an RGBA picture in place.
    /// @param rowBytes  4 * width; a one-channel picture is refused
    /// @param skinMask  plane of the picture's size; spots are sought where it is above 100
    /// @param firstRadiusCount, radiusCount  radii from firstRadiusCount + radiusCount - 1 down to
    /// firstRadiusCount
    ///                  are tried; above 2 none exists. A face box of less than 8 percent of the picture
    ///                  leaves the smallest alone, one of less than 2 percent none
    /// @param spotMask  plane that receives 255 on every repaired cell and 0 elsewhere, or null
    static bool Run(unsigned char* image, int width, int height, int rowBytes, const unsigned char* skinMask,
                    int firstRadiusCount, int radiusCount, const SpotBox& box, unsigned char* spotMask);
};

}  // namespace zellab
