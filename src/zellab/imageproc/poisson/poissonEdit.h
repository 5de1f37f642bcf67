#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Repaints the pixels that a mask marks with the pixels 10 rows below them and makes the patch seamless:
/// inside a box around the mask it keeps the gradients, cuts them along the mask's rim and solves a Poisson
/// equation per channel, the box's border held fixed (Perez, Gangnet, Blake: Poisson Image Editing, 2003).
/// @param mask      of the picture's size; 255 marks the area
/// @param strength  0..1, share of the repair
/// @return false, with the picture untouched, for a view that is not valid, a mask without a 255, or a mask
/// so
///         low that the rows below it are missing (a line on standard output says so)
bool PoissonEdit(ImageView image, PlaneView<const Byte> mask, float strength);

}  // namespace zellab
