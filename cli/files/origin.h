#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/files/pictureFormat.h"

namespace zelcli {

/// What travels with a picture beside its pixels. Empty parts were not there.
struct Metadata {
    std::vector<unsigned char> exif;  // from "II" or "MM" on, for the upright picture, without a thumbnail
    std::string xmp;                  // the packet
    std::vector<unsigned char> iptc;  // records, as in a photograph's caption block
    std::vector<unsigned char> iccProfile;                   // of the stored pixels
    std::string comment;                                     // UTF-8
    std::vector<std::pair<std::string, std::string>> texts;  // keyword and UTF-8 text, as PNG has them
    double dotsPerMm[2] = {0, 0};                            // across and down; 0: not told
};

enum class Subsampling { none, half, quarter };  // of colour: 4:4:4, 4:2:2, 4:2:0

/// How a file stored a picture, as far as an output may want to do the same.
struct Traits {
    std::optional<PictureFormat> format;  // where it is one that can be written
    std::optional<int> jpegQuality;
    std::optional<Subsampling> subsampling;
    bool progressive = false;
    bool grey = false;
};

/// A picture in a colour space that is not sRGB: as it was stored, and as the effects see it, so that
/// what they leave alone keeps its very numbers.
struct WideColours {
    std::vector<unsigned char> stored, seen;  // RGBA, 4 * width * height bytes each
};

/// Where a picture comes from.
struct Origin {
    Metadata metadata;
    Traits traits;
    std::optional<WideColours> wide;
};

}  // namespace zelcli
