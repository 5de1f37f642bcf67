#include "inference/moduleLoader.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <vector>

#include "platform/fileProbe.h"
#include "platform/libraryFolder.h"
#include "platform/module.h"
#include "platform/processEnvironment.h"
#include "platform/utf8Path.h"

namespace zellab::platform {

namespace {

constexpr const char* kName = "zel_networks";
constexpr const char* kVariable = "ZEL_NETWORKS_MODULE";

/// As seen from the file that holds this code: a library's install tree, a program's, the build tree's two.
constexpr const char* kFolders[] = {
    "zel",
    ZEL_MODULES_FROM_BIN,
    "../zel",
    "../../zel",
#ifdef ZEL_SYSTEM_MODULES
    ZEL_SYSTEM_MODULES,  // absolute: for a copy of the library that a host keeps elsewhere
#endif
};

struct OpenModule {
    Module module;
    const ZelNetworkModule* functions = nullptr;
};

std::string moduleText() {
    return "the inference module " + moduleFileName(kName);
}

std::vector<std::string> places() {
    std::vector<std::string> files;
    const std::string base = folderOfCode(kFolders);
    if (base.empty()) return files;
    for (const char* folder : kFolders)
        files.push_back((utf8Path(base) / folder / moduleFileName(kName)).lexically_normal().string());
    return files;
}

/// Opens one file; `why` says what is wrong with it.
OpenModule openFile(const std::string& file, std::string& why) {
    OpenModule opened{openModule(file, why), nullptr};
    if (!opened.module) return opened;
    const auto entry =
        reinterpret_cast<ZelNetworkModuleEntry>(functionOf(opened.module, ZEL_NETWORK_MODULE_ENTRY));
    const ZelNetworkModule* functions = entry ? entry() : nullptr;
    if (!functions)
        why = "it is another kind of module";
    else if (functions->abi != ZEL_NETWORK_MODULE_ABI)
        why = "it is of version " + std::to_string(functions->abi) + ", not " +
              std::to_string(ZEL_NETWORK_MODULE_ABI);
    else
        opened.functions = functions;
    return opened;
}

/// Asks for one file, which is opened once.
const ZelNetworkModule* moduleOf(const std::string& file, std::string& why) {
    static std::mutex mutex;
    // Never closed: the library below keeps threads, and networks may outlive static objects.
    static auto& open = *new std::map<std::string, OpenModule>;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto known = open.find(file);
    if (known != open.end()) return known->second.functions;
    OpenModule opened = openFile(file, why);
    if (!opened.functions) return nullptr;
    return open.emplace(file, std::move(opened)).first->second.functions;
}

std::string unusable(const std::string& file, const std::string& why) {
    return "the inference module " + file + " cannot be used (" + why + ")";
}

const ZelNetworkModule* toldModule(const std::string& told, std::string& absence) {
    std::string why = "there is no file that can be read";
    if (told.empty())
        absence = moduleText() + " is switched off (" + kVariable + " is empty)";
    else if (!utf8Path(told).is_absolute())
        absence = unusable(told, std::string(kVariable) + " must hold an absolute path");
    else if (const ZelNetworkModule* functions =
                 openRegularFile(told.c_str()) ? moduleOf(told, why) : nullptr)
        return functions;
    else
        absence = unusable(told, why);
    return nullptr;
}

}  // namespace

const ZelNetworkModule* networkModule(std::string& absence) {
    absence.clear();
    if (const auto told = trustedEnvironment(kVariable)) return toldModule(*told, absence);
    std::string looked;
    for (const std::string& file : places()) {
        std::string why;
        if (openRegularFile(file.c_str())) {
            if (const ZelNetworkModule* functions = moduleOf(file, why)) return absence.clear(), functions;
            if (absence.empty()) absence = unusable(file, why);
        }
        looked += (looked.empty() ? "looked in " : ", ") + utf8Path(file).parent_path().string();
    }
    if (absence.empty())
        absence = moduleText() + " is not installed (" +
                  (looked.empty() ? "and the folder of this library cannot be told" : looked) + ")";
    return nullptr;
}

std::string networkModuleAbsence() {
    std::string absence;
    networkModule(absence);
    return absence;
}

}  // namespace zellab::platform
