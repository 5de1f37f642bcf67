#pragma once

#include <array>
#include <optional>
#include <vector>

#include "beautykernel/blackeyecleaner/blackEyeCleaner.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// A rectangle of whole pixels.
struct PixelRect {
    int x = 0, y = 0, width = 0, height = 0;
    std::size_t count() const { return sampleCount(width, height); }
};

/// The part of the picture under both eyes, and the face's points seen from the face rectangle.
struct EyeRegion {
    PixelRect face;                // in the picture, inside it
    PixelRect crop;                // in the picture: both eyes and cheeks, inside the face
    std::vector<Vector2f> points;  // from the face's corner, limited to it

    /// A point of the face as seen from the crop.
    Vector2f inCrop(Vector2f p) const {
        return {p.x + static_cast<float>(face.x - crop.x), p.y + static_cast<float>(face.y - crop.y)};
    }
};

/// @return nothing, after a line in the log, where the crop holds more pixels than the face
std::optional<EyeRegion> findEyeRegion(int width, int height, const DarkCircleRun& run);

/// Planes of the crop's size.
struct UnderEyeMasks {
    Plane<Byte> region;  // 255 in both crescents
    Plane<Byte> repair;  // for the seamless repair: 255 in the crescents without their cores
    Plane<Byte> soft;  // weight of the mix: the core's strength in the cores, that of the run around, blurred
};

/// Clears a plane of the crop's size inside the outlines of both eyes and on their irises.
void cutEyes(Plane<Byte>& plane, const EyeRegion& region);

/// Draws the crescents of both eyes.
UnderEyeMasks drawUnderEyeMasks(const EyeRegion& region, const DarkCircleRun& run,
                                const DarkCircleMethod& method);

}  // namespace zellab
