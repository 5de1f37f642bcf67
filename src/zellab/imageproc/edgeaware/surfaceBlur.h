#pragma once

namespace zellab {

/// Smooths surfaces and keeps edges: every byte becomes the mean of its disc, weighted by how near each value
/// is to the byte's own. The disc is a histogram that slides, so a pixel costs what the disc's rim is long.
class SurfaceBlurFilter {
public:
    /// Filters bytes 0 to 2 of RGBA pixels in place; byte 3 stays. `radius` is in pixels and `threshold` in
    /// levels, both limited to 1..100 from above, the threshold from below as well. `mask` has one byte a
    /// pixel, tightly packed, or is null: pixels whose byte is 0 stay. Values of 0 never count, not even
    /// genuine ones. Returns false, the picture untouched, for a null picture, a size of 0 or less, a radius
    /// below 1 or rows shorter than their pixels.
    bool Run(unsigned char* rgba, int width, int height, int rowBytes, int radius, int threshold,
             const unsigned char* mask);
};

}  // namespace zellab
