#pragma once

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The portrait recipe on the first face: slims the face, enlarges the eyes, removes dark circles, and, after
/// copying the picture so far over `blendSource`, which has its size, smooths the skin. The landmarks are
/// those from before the reshaping. Nothing happens where a picture is empty or there is no face.
void personBeauty(ImageView image, const ImageCoreFaceInfo* faceInfo, ImageView blendSource);

}  // namespace zellab
