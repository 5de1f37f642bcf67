#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/files/image.h"

/// Picture files from and to memory. One of two implementations is built: vips/ knows every format and what
/// travels with a picture; plain/ stands on no other library and knows the pixels of a few formats.

namespace zelcli {

/// A picture with what deserves a word to the user ("16 bits a channel are reduced to 8").
struct LoadedPicture {
    Image image;
    std::vector<std::string> notes;
};

struct ReadOptions {
    bool scrambled = false;  // the file's bytes are; it gives its pixels alone
    /// A larger picture is refused before memory is taken for it; 2^28 pixels are one gigabyte of RGBA.
    std::uint64_t mostPixels = std::uint64_t{1} << 28;
};

struct SaveOptions {
    std::optional<int> quality = {};              // 1 to 100, for what is not lossless
    std::optional<Subsampling> subsampling = {};  // of JPEG and AVIF
    bool lossless = false;                        // WebP and AVIF
    std::optional<int> compression = {};          // 0 to 9: effort of PNG; 0: none in TIFF
    bool strip = false;                           // nothing but the pixels and what their colours need
    bool noGps = false;                           // no place in what goes along
};

/// Throws Failure.
LoadedPicture decodePicture(std::span<const unsigned char> file, const ReadOptions& options);

/// The picture as a file with what its origin carried. What the format cannot carry is told in a note.
/// Throws Failure.
std::vector<unsigned char> encodePicture(const Image& image, PictureFormat format, const SaveOptions& options,
                                         std::vector<std::string>& notes);

/// Whether this build writes the format.
bool canWrite(PictureFormat format);

/// Throws Failure where a picture is empty, has a side that the library does not take, or too many pixels.
void checkSize(std::uint64_t width, std::uint64_t height, const ReadOptions& options);

/// Pixels through the library's own decoder: PNG, JPEG, BMP, GIF, TGA, PSD, HDR, PIC, PNM, and scrambled files.
Image decodeByLibrary(std::span<const unsigned char> file, const ReadOptions& options);

}  // namespace zelcli
