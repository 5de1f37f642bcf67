#pragma once

#include <optional>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zellab {

/// Smooths what a mask marks inside one box around it, at a fixed share of the repair.
class WrinkleRegionCleaner {
public:
    /// Finds the box of the marks, on a copy of the mask whose longer side is at most 720. The mask is kept
    /// as a view until Apply. A line on standard output records the box.
    /// @return whether there is a box of more than one column and row
    bool Prepare(PlaneView<const Byte> mask);

    /// Repairs the RGBA picture, of the mask's size, in the box.
    /// @param strength  percentage, halved before use
    /// @return false where Prepare found no box
    bool Apply(ImageView image, int strength);

private:
    PlaneView<const Byte> m_mask;
    std::optional<PixelBox> m_region;  // in pixels of the working copy
};

}  // namespace zellab
