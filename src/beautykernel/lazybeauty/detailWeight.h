#pragma once

#include "facepoints/faceData.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// How much each pixel may be smoothed, from the local range of a grey picture, its middle frequencies and
/// the skin mask.
/// @param face  smoothing is weaker off its box; null without a face
/// @param bias  taken off the weight
Plane<Byte> detailWeight(PlaneView<const Byte> grey, PlaneView<const Byte> skinMask, const FaceData* face,
                         int bias);

/// 255 where the Sobel response of the plane, equalised first, is strong; its outermost ring is 0.
Plane<Byte> equalisedEdges(PlaneView<const Byte> grey);

}  // namespace zellab
