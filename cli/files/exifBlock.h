#pragma once

#include <span>
#include <vector>

namespace zelcli {

/// How the stored pixels must be turned to stand upright, in the numbering of EXIF: 1 as they are, 2 mirrored
/// left to right, 3 turned by 180 degrees, 4 mirrored top to bottom, 5 transposed, 6 to be turned clockwise,
/// 7 transposed across the other diagonal, 8 to be turned anticlockwise.
constexpr int kUprightOrientation = 1;

/// The orientation that an EXIF block (from "II" or "MM" on) tells; 1 where it tells none or is damaged.
int exifOrientation(std::span<const unsigned char> block);

/// Makes a block true for a picture that was turned upright and changed: orientation 1, width and height as
/// given, and the thumbnail, which shows the picture before the change, unlinked. All other bytes stay, so
/// that makers' notes with absolute offsets keep working. A damaged block stays as it is.
void adaptExif(std::vector<unsigned char>& block, int width, int height);

}  // namespace zelcli
