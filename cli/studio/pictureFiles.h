#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/files/readPicture.h"

namespace zelcli::studio {

/// The studio's way to picture files. Each throws Failure.

LoadedPicture pictureFromFile(const std::filesystem::path& path);

/// A picture from the bytes of a file that was dropped on the page.
LoadedPicture pictureFromBytes(const std::string& bytes);

/// A small JPEG for lists.
std::string thumbnailOf(const Image& image, int longestSide);

/// Whether a file of this name can be written, by its suffix.
bool canSave(const std::string& name);

/// Writes by the suffix, whole or not at all. Returns what deserves a word.
std::vector<std::string> savePicture(const std::filesystem::path& path, const Image& image);

}  // namespace zelcli::studio
