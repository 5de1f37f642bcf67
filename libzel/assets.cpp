#include "assets.h"

#include <cstdlib>

#include "effect.h"
#include "platform/libraryFolder.h"
#include "zel_effects/zel_effects.h"
#include "zellab/utils/assetFolders.h"

namespace zel {

namespace {

namespace fs = std::filesystem;

/// As seen from the program's folder: the install tree's place, then the build tree's.
constexpr const char* kPlaces[] = {ZEL_ASSETS_FROM_BIN, "../assets"};

/// Where the library itself looks, but for what the environment tells.
std::vector<std::string> foldersOfLibrary() {
    // The address of an exported function: where it was loaded from.
    const auto* const address =
        reinterpret_cast<const void*>(&ZelImageCore::TableBase::ImageProcessWithMosaic);
    return zellab::assetFolders(zellab::platform::folderOfCode(address));
}

}  // namespace

fs::path findAssets(const std::string& given) {
    std::error_code error;
    if (!given.empty()) {
        fs::path folder = fs::absolute(given);
        if (!fs::is_directory(folder, error)) throw Failure("is no folder with assets");
        return folder;
    }
    const char* const told = std::getenv("ZEL_ASSETS");
    if (told && *told) {
        if (!fs::is_directory(told, error)) throw Failure("ZEL_ASSETS names no folder");
        return fs::absolute(told);
    }
    std::vector<fs::path> folders;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        for (const char* place : kPlaces) folders.push_back(program.parent_path() / place);
    for (const std::string& folder : foldersOfLibrary()) folders.emplace_back(folder);
    for (const fs::path& folder : folders)
        if (fs::is_directory(folder, error)) return folder.lexically_normal();
    return {};
}

void enterAssets(const std::string& given) {
    const fs::path folder = findAssets(given);
    if (folder.empty()) return;
    std::error_code error;
    fs::current_path(folder, error);
    if (error) throw Failure("cannot be entered (" + error.message() + ")");
}

}  // namespace zel
