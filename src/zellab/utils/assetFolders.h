#pragma once

#include <string>
#include <vector>

namespace zellab {

/// Where assets may lie when the working directory has none, the first to be tried first: the folder that the
/// environment variable ZEL_ASSETS names, "assets" beside the library, the installed data folder and the build
/// tree's folder as seen from the library; of a system's package, its own data folder. None at all where ZEL_ASSETS
/// is set and empty.
/// @param libraryFolder  of the loaded library, or empty where it is not known
std::vector<std::string> assetFolders(const std::string& libraryFolder);

/// A file or folder below the folder with the assets. Empty where the folder is: nothing is there then.
std::string assetPath(const std::string& folder, const std::string& name);

}  // namespace zellab
