#pragma once

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/poisson/holeBlocks.h"

namespace zellab {

/// The green channel of a picture as a plane.
Plane<Byte> greenPlane(ConstImageView picture);

/// Replaces each sample by its distance from the mean of the 6 by 6 samples from two above and left of it to
/// three below and right of it, clipped to the plane. The window lies off centre, and stays so.
void makeRoughness(PlaneView<Byte> plane);

/// Sum of a plane over one block.
long sumOverBlock(PlaneView<const Byte> plane, const BlockGrid& grid, GridBlock block);

}  // namespace zellab
