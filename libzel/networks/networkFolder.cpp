#include "libzel/networks/networkFolder.h"

#include <filesystem>

#include "platform/fileProbe.h"
#include "platform/module.h"

namespace zel {

namespace {

constexpr const char* kVariable = "ZEL_NETWORKS";
constexpr const char* kBelowAssets = "networks";
constexpr const char* kBelowUserData = "zel_effects/networks";

/// Empty where the system tells none. A relative one does not count.
std::filesystem::path userData() {
    using zellab::platform::trustedEnvironment;
    if (const char* told = trustedEnvironment("XDG_DATA_HOME");
        told && std::filesystem::path(told).is_absolute())
        return told;
    if (const char* home = trustedEnvironment("HOME"); home && std::filesystem::path(home).is_absolute())
        return std::filesystem::path(home) / ".local/share";
    return {};
}

}  // namespace

std::string networkFolder(const std::string& assets) {
    if (const char* told = zellab::platform::trustedEnvironment(kVariable)) return told;
    const auto below = [](const std::filesystem::path& folder, const char* name) {
        return folder.empty() ? std::string() : (folder / name).string();
    };
    for (const std::string& folder : {below(assets, kBelowAssets), below(userData(), kBelowUserData)})
        if (!folder.empty() && zellab::platform::isDirectory(folder.c_str())) return folder;
    return {};
}

std::string networkFolderHint(const std::string& folder) {
    const char* told = zellab::platform::trustedEnvironment(kVariable);
    if (told && !*told) return "networks are switched off (ZEL_NETWORKS is empty)";
    if (folder.empty()) return "no networks are installed; scripts/networks brings them";
    return "scripts/networks brings them anew";
}

}  // namespace zel
