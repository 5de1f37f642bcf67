#pragma once

#include "cli/files/image.h"

namespace zelcli {

/// Turns the pixels upright: `orientation` is what the picture's EXIF block told (1 to 8, see exifBlock.h).
/// Width and height swap for 5 to 8.
void turnUpright(Image& image, int orientation);

}  // namespace zelcli
