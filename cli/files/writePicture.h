#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "cli/files/pictureCodec.h"
#include "cli/files/readPicture.h"

namespace zelcli {

/// Writes bytes to `path` as a whole or not at all: to a temporary name in the same folder first, which is
/// then renamed. An existing file keeps its permissions, but not a set-user-id bit; a symbolic link keeps
/// pointing to its file. Throws Failure and leaves what was there.
void writeFileSafely(const std::filesystem::path& path, std::span<const unsigned char> bytes);

void writeText(const std::filesystem::path& path, const std::string& text);

/// Writes bytes to a file as above, or to standard output. Throws Failure.
void writeBytes(const UserPath& path, std::span<const unsigned char> bytes);

/// Encodes and writes. Returns what deserves a word to the user. Throws Failure.
std::vector<std::string> writePicture(const UserPath& path, const Image& image, PictureFormat format,
                                      const SaveOptions& options);

/// A picture that the command draws, by the suffix and with all defaults.
void writePicture(const std::filesystem::path& path, const Image& image);

}  // namespace zelcli
