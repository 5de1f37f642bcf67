#include "assets.h"

#include "effect.h"

namespace zel {

namespace {

namespace fs = std::filesystem;

/// As seen from the program's folder: the install tree's place, then the build tree's.
constexpr const char* kPlaces[] = {ZEL_ASSETS_FROM_BIN, "../assets"};

}  // namespace

fs::path findAssets(const std::string& given) {
    std::error_code error;
    if (!given.empty()) {
        fs::path folder = fs::absolute(given);
        if (!fs::is_directory(folder, error)) throw Failure("is no folder with assets");
        return folder;
    }
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) return {};
    for (const char* place : kPlaces) {
        fs::path folder = (program.parent_path() / place).lexically_normal();
        if (fs::is_directory(folder, error)) return folder;
    }
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
