#pragma once

#include "CrossPlateform/platform_win/stb_image_util/imageBuffer.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Writes the picture as it looks on white, alpha 255, to `to`, which has the same size and may be the same
/// buffer.
void flattenOntoWhite(ConstImageView from, ImageView to);

/// Flattens onto white a picture that was decoded at one size and is now held at another (the same, or
/// reduced by maxSizeAdjust). The result has room for the decoded size in every case, because that is the
/// size that the host was told: what the reduced picture does not fill is white. Bad sizes leave the pixels
/// as they are; null where the memory runs out. Both with a line in the log.
ImageBuffer alphaAdjust(ImageBuffer pixels, ImageSize decoded, ImageSize held);

}  // namespace zellab
