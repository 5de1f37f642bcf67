#pragma once

#include <functional>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/poisson/gradientField.h"
#include "zellab/imageproc/poisson/holeBlocks.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zellab {

/// Gives the hole pixels of a crop new gradients. `mask` is the crop's: above kHoleAbove in the hole.
using GradientExchange =
    std::function<void(ConstImageView crop, PlaneView<const Byte> mask, GradientField& field)>;

/// What the Poisson repairs have in common.
struct GradientRepair {
    PixelBox hole;         // what is repaired
    PixelBox maskArea;     // where the mask is read; outside it nothing is hole
    int margin = 0;        // pixels around the hole that take part in the solve
    int anyMaskAbove = 0;  // mask samples above this become 255; 254 leaves the mask as it is
    int percent = 100;     // strength; the blend takes its square root
    GradientExchange exchange;
};

/// Repairs the pixels of a rectangle around the hole: exchanges the gradients in the hole, solves for the
/// colours with the rectangle's border held fixed, and blends. Holes that reach the picture's border get
/// border values from the nearest pixel outside the hole first. Byte 3 stays.
/// @return false where the rectangle is narrower or lower than 3 pixels
bool repairByGradients(ImageView image, PlaneView<const Byte> mask, const GradientRepair& repair);

/// Averages the donor block's gradients over the hole pixels of a block (mask above 128), and gives each of
/// those pixels the donor's gradient less that mean: the donor lends its texture, not its slope. Reads from
/// `before`, writes to `after`; visits each such pixel's donor position with onDonor(x, y).
void lendGradients(PlaneView<const Byte> mask, const BlockGrid& grid, GridBlock hole, GridBlock donor,
                   const GradientField& before, GradientField& after,
                   const std::function<void(int x, int y)>& onDonor = nullptr);

}  // namespace zellab
