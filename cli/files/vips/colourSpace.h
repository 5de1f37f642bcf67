#pragma once

#include <span>
#include <vector>

#include "cli/files/image.h"

namespace zelcli {

/// Whether a colour profile is one for RGB that can be worked with, and shows other colours than sRGB.
bool isWide(std::span<const unsigned char> iccProfile);

/// Turns pixels of a wide colour space into sRGB. Alpha stays.
std::vector<unsigned char> toSrgb(std::span<const unsigned char> rgba,
                                  std::span<const unsigned char> iccProfile);

/// The pixels of the picture in the colour space of its origin's profile. Those that were not changed are the stored
/// ones, and little changes keep what sRGB cannot show.
std::vector<unsigned char> inStoredColours(const Image& image);

}  // namespace zelcli
