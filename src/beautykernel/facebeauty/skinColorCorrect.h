#pragma once

#include "beautykernel/skintools/skinMaskFromColor.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Takes redness and yellow out of skin, by how far the mean skin colour is from a neutral one.
/// @param mask  plane of the picture's size; pixels where it is 0 stay
void skinColorCorrect(ImageView image, PlaneView<const Byte> mask, const MeanColour& mean);

}  // namespace zellab
