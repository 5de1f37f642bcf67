#pragma once

#include <filesystem>
#include <string>

namespace zellab::platform {

/// A path from text in UTF-8. The path's own constructor takes text in whatever the system's narrow encoding is; the way
/// back, path.string(), is UTF-8 everywhere.
inline std::filesystem::path utf8Path(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}

}  // namespace zellab::platform
