#include "zellab/utils/assetFolders.h"

#include "platform/processEnvironment.h"

namespace zellab {

namespace {

constexpr const char* kVariable = "ZEL_ASSETS";

/// Beside the library, where the install tree puts them, and where the build tree does.
constexpr const char* kFromLibrary[] = {"assets", ZEL_ASSETS_FROM_LIBRARY, "../assets"};

}  // namespace

std::vector<std::string> assetFolders(const std::string& libraryFolder) {
    std::vector<std::string> folders;
    if (auto told = platform::environmentText(kVariable)) {
        if (told->empty()) return {};
        folders.push_back(std::move(*told));
    }
    if (!libraryFolder.empty())
        for (const char* place : kFromLibrary) folders.push_back(libraryFolder + "/" + place);
#ifdef ZEL_SYSTEM_ASSETS
    // For a copy of the library that a host keeps elsewhere.
    folders.emplace_back(ZEL_SYSTEM_ASSETS);
#endif
    return folders;
}

std::string assetPath(const std::string& folder, const std::string& name) {
    return folder.empty() ? std::string() : folder + "/" + name;
}

}  // namespace zellab
