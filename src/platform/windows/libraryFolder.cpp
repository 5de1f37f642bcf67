#include "platform/libraryFolder.h"

#include <windows.h>

#include <filesystem>

namespace zellab::platform {

std::string folderOfCode(const void* address) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            static_cast<LPCWSTR>(address), &module))
        return {};
    // The length is not told beforehand; a path that fills the room may have been cut.
    for (std::wstring path(MAX_PATH, L'\0'); path.size() <= UNICODE_STRING_MAX_CHARS;
         path.resize(2 * path.size())) {
        const DWORD units = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (units == 0) return {};
        if (units == path.size()) continue;
        path.resize(units);
        return std::filesystem::path(path).parent_path().string();
    }
    return {};
}

}  // namespace zellab::platform
