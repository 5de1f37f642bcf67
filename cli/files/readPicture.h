#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "cli/files/pictureCodec.h"
#include "platform/utf8Path.h"

namespace zelcli {

/// What stands for standard input or output in the place of a file's name.
constexpr const char* kStandardStream = "-";

/// A path as the user typed it, for messages, and where it leads whatever the working directory.
struct UserPath {
    std::string shown;
    std::filesystem::path real;

    UserPath() = default;
    explicit UserPath(const std::string& typed)
        : shown(typed), real(std::filesystem::absolute(zellab::platform::utf8Path(typed))) {}
    UserPath operator/(const std::string& name) const;
    bool isStream() const { return shown == kStandardStream; }
};

/// All bytes of a regular file. Throws Failure with the reason (a folder, no permission, ...).
std::vector<unsigned char> readFileBytes(const std::filesystem::path& path);

/// All bytes of a file or of standard input. Throws Failure.
std::vector<unsigned char> readBytesOf(const UserPath& path);

/// Reads a picture with what travels with it. Throws Failure.
LoadedPicture readPicture(const UserPath& path, const ReadOptions& options = {});
LoadedPicture readPicture(const std::filesystem::path& path, const ReadOptions& options = {});

/// Reads a picture as a mask: its grey value, weighed by its alpha. Throws Failure.
Mask readMask(const std::filesystem::path& path);

}  // namespace zelcli
