#include "libzel/networks/networkFolder.h"

#include <filesystem>

#include "platform/fileProbe.h"
#include "platform/processEnvironment.h"
#include "platform/utf8Path.h"

namespace zel {

namespace {

constexpr const char* kVariable = "ZEL_NETWORKS";
constexpr const char* kBelowAssets = "networks";
constexpr const char* kBelowUserData = "zel_effects/networks";

}  // namespace

std::string networkFolder(const std::string& assets) {
    if (const auto told = zellab::platform::trustedEnvironment(kVariable)) return *told;
    const auto below = [](const std::filesystem::path& folder, const char* name) {
        return folder.empty() ? std::string() : (folder / name).string();
    };
    for (const std::string& folder : {below(zellab::platform::utf8Path(assets), kBelowAssets),
                                      below(zellab::platform::userDataFolder(), kBelowUserData)})
        if (!folder.empty() && zellab::platform::isDirectory(folder.c_str())) return folder;
    return {};
}

std::string networkFolderHint(const std::string& folder) {
    const auto told = zellab::platform::trustedEnvironment(kVariable);
    if (told && told->empty()) return "networks are switched off (ZEL_NETWORKS is empty)";
    if (folder.empty()) return "no networks are installed; scripts/networks brings them";
    return "scripts/networks brings them anew";
}

}  // namespace zel
