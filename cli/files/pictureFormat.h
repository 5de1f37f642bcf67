#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zelcli {

/// The formats that are written.
enum class PictureFormat { png, jpeg, tiff, webp, avif };

/// The format that a file name asks for by its suffix (.png, .jpg, .jpeg, .tif, .tiff, .webp, .avif in any case).
std::optional<PictureFormat> formatOfSuffix(const std::filesystem::path& path);

/// The same for a word of the command line: "png", "jpg", "jpeg", "tif", "tiff", "webp", "avif".
std::optional<PictureFormat> formatOfWord(const std::string& word);

/// "PNG".
const char* nameOf(PictureFormat format);

/// The suffix that a new file of the format gets: ".png".
const char* suffixOf(PictureFormat format);

/// For messages: ".png, .jpg, .jpeg, .tif, .tiff, .webp or .avif".
extern const char* const kOutputSuffixes;

/// Throws a UsageError where the path of an option has no suffix of a format that is written.
void requireFormat(const std::string& path, const char* option);

/// Whether the suffix is one of a picture file that can be read: what a folder is searched for.
bool looksLikePicture(const std::filesystem::path& path);

}  // namespace zelcli
