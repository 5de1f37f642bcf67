#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "cli/failure.h"
#include "cli/files/image.h"

namespace zelcli {

/// A path as the user typed it, for messages, and where it leads whatever the working directory.
struct UserPath {
    std::string shown;
    std::filesystem::path real;

    UserPath() = default;
    explicit UserPath(const std::string& typed) : shown(typed), real(std::filesystem::absolute(typed)) {}
    UserPath operator/(const std::string& name) const;
};

/// All bytes of a regular file. Throws Failure with the reason (a folder, no permission, ...).
std::vector<unsigned char> readFileBytes(const std::filesystem::path& path);

/// A picture with what deserves a word to the user ("16 bits a channel are reduced to 8").
struct LoadedPicture {
    Image image;
    std::vector<std::string> notes;
};

/// Reads a picture through the library: PNG and JPEG with EXIF, colour profile and orientation, the
/// library's other formats with their pixels alone. `scrambled` files give their pixels alone as well: only
/// the library can look inside. Throws Failure.
LoadedPicture readPicture(const std::filesystem::path& path, bool scrambled);

/// Reads a picture as a mask: its grey value, weighed by its alpha. Throws Failure.
Mask readMask(const std::filesystem::path& path);

}  // namespace zelcli
