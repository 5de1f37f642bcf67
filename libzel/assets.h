#pragma once

#include <filesystem>
#include <string>

namespace zel {

/// The folder with the library's assets: `given` (--assets) where it is not empty, else the one that the
/// environment variable ZEL_ASSETS names, else beside the installed program or library, else in the build
/// tree. Empty where none is there. Throws Failure where a told one is no folder.
std::filesystem::path findAssets(const std::string& given);

/// Makes the asset folder the working directory, where the library looks for "style/base/...". Every path
/// of the user must have been made absolute before. Throws Failure.
void enterAssets(const std::string& given);

}  // namespace zel
