#pragma once

#include "zel_effects/zel_records.h"

namespace zellab {

/// The portrait recipe on the first face: slims the face, enlarges the eyes, removes dark circles, and, after
/// copying the picture so far over `blendSource`, smooths the skin. The landmarks are those from before the
/// reshaping. Nothing happens where a pointer is null or there is no face.
void personBeauty(unsigned char* image, int width, int height, const ImageCoreFaceInfo* faceInfo,
                  unsigned char* blendSource);

}  // namespace zellab
