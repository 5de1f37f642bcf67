#pragma once

#include <string>

namespace zel {

/// The folder with the library's assets: the one that the environment variable ZEL_ASSETS names, else beside the
/// loaded library, else the installed data folder, else in the build tree; absolute. Empty where none is there.
/// Throws a Failure where the variable names no folder.
std::string findAssets();

}  // namespace zel
