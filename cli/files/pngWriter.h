#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "cli/files/image.h"
#include "cli/files/pixelRows.h"

namespace zelcli {

/// Packed pixels as a PNG file, with what travels beside them. Throws Failure.
/// @param compression  0 to 9; below 0: fast
std::vector<unsigned char> encodePng(const PackedPixels& pixels, const Metadata& metadata, int compression);

/// A grey picture of 16 bits a sample, `samples` row by row, as a PNG file. Throws Failure.
std::vector<unsigned char> encodeGray16Png(int width, int height, std::span<const std::uint16_t> samples);

/// A mask as a grey PNG file. Throws Failure.
std::vector<unsigned char> encodeGrayPng(const Mask& mask);

}  // namespace zelcli
