#pragma once

#include "portrait/faces.h"
#include "portrait/image.h"
#include "zellab/imageproc/core/imageView.h"

namespace zel {

/// Adds to a mask the strands of hair around heads that the person network is too coarse to see, where the ground is plain
/// there: what is thin, stands out from it and is connected with the person. Where the ground has structure
/// of its own, nothing is added.
/// @param faces    the subject's
/// @param picture  of the mask's size, opaque
void addStrayHair(Mask& mask, const FaceSet& faces, zellab::ConstImageView picture);

}  // namespace zel
