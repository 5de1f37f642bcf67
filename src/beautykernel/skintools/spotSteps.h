#pragma once

#include "frame/faceData.h"
#include "zellab/imageproc/imageView.h"

/// The spot repair as the beauty pipelines take it.

namespace zellab {

/// Repairs spots up to radius 2 where `skinMask` says skin, inside the box of the face where there is one.
/// @param spotMask  plane of the picture's size that receives 255 on repaired cells, or null
void repairSpots(ImageView image, PlaneView<const Byte> skinMask, const FaceData* face, Byte* spotMask);

/// The same on a smaller copy; what was repaired there is enlarged and pasted into the picture.
void repairSpotsOnCopy(ImageView image, ImageView small, PlaneView<const Byte> smallSkinMask,
                       const FaceData* smallFace);

}  // namespace zellab
