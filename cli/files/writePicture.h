#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "cli/files/image.h"

namespace zelcli {

enum class PictureFormat { png, jpeg };

/// The format that a file name asks for by its suffix (.png, .jpg, .jpeg in any case).
std::optional<PictureFormat> formatOfSuffix(const std::filesystem::path& path);

/// Writes bytes to `path` as a whole or not at all: to a temporary name in the same folder first, which is
/// then renamed. An existing file keeps its permissions, but not a set-user-id bit; a symbolic link keeps
/// pointing to its file. Throws Failure and leaves what was there.
void writeFileSafely(const std::filesystem::path& path, std::span<const unsigned char> bytes);

void writeText(const std::filesystem::path& path, const std::string& text);

/// Encodes by the suffix and writes safely. Throws Failure.
void writePicture(const std::filesystem::path& path, const Image& image);

}  // namespace zelcli
