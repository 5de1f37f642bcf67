#pragma once

#include <filesystem>

namespace zelassets {

/// Writes the named looks of the command as .cube files into a folder: identity, warm, cool, clear, soft,
/// film, mono.
void writeCubeLooks(const std::filesystem::path& folder);

}  // namespace zelassets
