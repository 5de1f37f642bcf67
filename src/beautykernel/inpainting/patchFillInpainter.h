#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// How a hole is filled.
struct PatchFillParams {
    int radius = 20;      // pixels around the hole's box that serve as sources, limited to 60
    int firstTries = 16;  // random tries a pixel in the first pass
    int tries = 100;      // random tries a pixel in the other passes
    int passes = 20;      // limited to 1..6
};

/// Fills a hole pixel by pixel with colours of similar neighbourhoods, found by coherence with the neighbours
/// and by random tries (a resynthesis of the texture). One run at a time in a process: the runs share one
/// random source, rand(), and the outcome of a run depends on its state alone, so a host that fixes srand can
/// make a run again.
class PatchFillInpainter {
public:
    /// The one object of the process.
    static PatchFillInpainter& instance();

    /// Repairs an RGBA picture in place; waits while another thread runs.
    /// @param mask  plane of the picture's size, non-zero in the hole
    /// @return false where there is nothing to do: a view that is not valid, a radius below 1, no hole, or a
    ///         hole of one row or column
    bool Run(ImageView image, PlaneView<const Byte> mask, const PatchFillParams& params);

private:
    PatchFillInpainter() = default;
};

}  // namespace zellab
