#include "platform/libraryFolder.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>

namespace zellab::platform {

std::string folderOfCode(const void* address) {
    Dl_info module{};
    if (dladdr(address, &module) == 0 || !module.dli_fname) return {};
    // Links and relative paths are followed: assets lie beside the file itself.
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(module.dli_fname, nullptr), std::free);
    if (!path) return {};
    const std::string file = path.get();
    return file.substr(0, file.rfind('/'));
}

}  // namespace zellab::platform
