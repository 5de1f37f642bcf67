#pragma once

namespace zellab {

/// Fills a hole pixel by pixel with colours of similar neighbourhoods, found by coherence with the neighbours
/// and by random tries (a resynthesis of the texture). One run at a time in a process: the runs share one
/// random source, rand(), and the outcome of a run depends on its state alone, so a host that fixes srand can
/// make a run again.
class PatchFillInpainter {
public:
    /// The one object of the process.
    static PatchFillInpainter& instance();

    /// Repairs an RGBA picture in place; waits while another thread runs.
    /// @param radius      pixels around the hole's box that serve as sources, limited to 60
    /// @param mask        plane of the picture's size, non-zero in the hole
    /// @param neighbours  random tries a pixel in the first pass
    /// @param tries       random tries a pixel in the other passes
    /// @param passes      limited to 1..6
    /// @return false where there is nothing to do: a null pointer, a radius below 1, no hole, or a hole of
    /// one row
    ///         or column
    bool Run(unsigned char* image, int width, int height, int radius, const unsigned char* mask,
             int neighbours, int tries, int passes);

private:
    PatchFillInpainter() = default;
};

}  // namespace zellab
