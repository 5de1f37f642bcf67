#pragma once

#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Smooths surfaces and keeps edges: every byte becomes the mean of its disc, weighted by how near each value
/// is to the byte's own. The disc is a histogram that slides, so a pixel costs what the disc's rim is long.
class SurfaceBlurFilter {
public:
    /// Filters bytes 0 to 2 of RGBA pixels in place; byte 3 stays. `radius` is in pixels and `threshold` in
    /// levels, both limited to 1..100 from above, the threshold from below as well. `mask` has the picture's
    /// size, or is none (not valid): pixels whose byte is 0 stay. Values of 0 never count, not even genuine
    /// ones. Returns false, the picture untouched, for a view that is not valid or a radius below 1.
    bool Run(ImageView image, int radius, int threshold, PlaneView<const Byte> mask);

    /// The picture that the last Run was given, as it was; valid until the next one.
    ConstImageView before() const { return m_before; }

private:
    RgbaImage m_padded;       // in a rim of zeros as wide as the radius
    ConstImageView m_before;  // its inner part
};

}  // namespace zellab
