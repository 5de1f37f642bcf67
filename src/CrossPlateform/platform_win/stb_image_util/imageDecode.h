#pragma once

#include "CrossPlateform/platform_win/stb_image_util/imageBuffer.h"

namespace zellab {

/// Decodes an image file in memory to RGBA. Null where it is none, is damaged, claims a size that its bytes
/// cannot hold, or needs more memory than the machine has. Some formats decode also where the file ends early
/// or numbers colours beyond its palette: pixels that the file does not tell are 0, their alpha 0 or 255.
/// width, height and channels (those in the file) are written on success; after a failure they may have
/// changed.
ImageBuffer decodeImage(const unsigned char* data, int size, int& width, int& height, int& channels);

}  // namespace zellab
