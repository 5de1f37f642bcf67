#pragma once

#include <span>
#include <string>
#include <vector>

#include "cli/files/origin.h"
#include "cli/files/pictureCodec.h"

/// EXIF, XMP, captions and comments in files, through exiv2.

namespace zelcli {

/// Reads what a JPEG, PNG, TIFF, WebP or JPEG 2000 file carries. Damage is told in a note.
void readMetadata(std::span<const unsigned char> file, Metadata& metadata, std::vector<std::string>& notes);

/// Makes EXIF and XMP true for a picture that was turned upright and will be changed: orientation 1, width and
/// height as given, no thumbnail of the old picture, and nothing that belongs to the old file's own layout.
void adaptMetadata(Metadata& metadata, int width, int height);

/// Takes the place where the picture was made out of EXIF and XMP.
void removeGps(Metadata& metadata);

/// Puts EXIF, XMP, captions and comment into an encoded JPEG, TIFF or WebP file, in place of what is there.
void writeMetadata(std::vector<unsigned char>& file, const Metadata& metadata);

}  // namespace zelcli
