#pragma once

#include <filesystem>
#include <span>
#include <string>

namespace zellab::platform {

/// Puts bytes into a file, whole or not at all: they are written beside it under a name of their own, which then
/// takes the file's place. A file that is replaced hands on who may read, write and run it; a link stays, and
/// what it leads to is replaced. Nothing is left where the program is ended meanwhile (outputSignals.h).
/// @return empty on success, else why: "is a folder", "cannot be written (No space left on device)"
std::string replaceFile(const std::filesystem::path& path, std::span<const unsigned char> bytes);

}  // namespace zellab::platform
