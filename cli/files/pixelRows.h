#pragma once

#include <span>
#include <vector>

#include "cli/files/image.h"

namespace zelcli {

/// A picture as an encoder takes it: packed rows of 1 (grey), 3 or 4 bytes a pixel.
struct PackedPixels {
    int width = 0, height = 0, channels = 0;
    std::vector<unsigned char> bytes;
};

/// Packs the pixels of a picture: grey where its file was and the picture still is, with alpha only where something
/// is not opaque. Without `keepAlpha` it is laid on white.
/// @param rgba  the picture's pixels in the colour space of the output
PackedPixels packPixels(const Image& image, std::span<const unsigned char> rgba, bool keepAlpha);

}  // namespace zelcli
