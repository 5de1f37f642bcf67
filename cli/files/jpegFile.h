#pragma once

#include <span>
#include <vector>

#include "cli/files/fileMeta.h"
#include "cli/files/image.h"

namespace zelcli {

bool isJpeg(std::span<const unsigned char> file);

/// Reads size, EXIF and colour profile, and proves that the file goes on to its end mark. Throws Failure.
FileMeta readJpegMeta(std::span<const unsigned char> file);

/// The picture as a JPEG file of quality 95 without chroma subsampling, flattened onto white, with its EXIF
/// block and colour profile. An EXIF block that JPEG cannot hold (65,527 bytes) is left out. Throws Failure.
std::vector<unsigned char> encodeJpeg(const Image& image);

/// Whether encodeJpeg can carry an EXIF block of this size.
bool jpegHoldsExif(std::size_t size);

}  // namespace zelcli
