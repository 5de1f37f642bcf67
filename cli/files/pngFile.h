#pragma once

#include <span>
#include <vector>

#include "cli/files/fileMeta.h"
#include "cli/files/image.h"

namespace zelcli {

bool isPng(std::span<const unsigned char> file);

/// Reads size, EXIF and colour profile, and proves that the file is whole: every chunk is there, and the
/// checksums of those that the picture needs are right. Throws Failure.
FileMeta readPngMeta(std::span<const unsigned char> file);

/// The picture as a PNG file with its EXIF block and colour profile. A wholly opaque picture is stored
/// without alpha. Throws Failure.
std::vector<unsigned char> encodePng(const Image& image);

/// A grey picture of 16 bits a sample, `samples` row by row, as a PNG file. Throws Failure.
std::vector<unsigned char> encodeGray16Png(int width, int height, std::span<const std::uint16_t> samples);

/// A mask as a grey PNG file. Throws Failure.
std::vector<unsigned char> encodeGrayPng(const Mask& mask);

}  // namespace zelcli
