#include "platform/module.h"

#include <windows.h>

#include "platform/windows/wideText.h"

namespace zellab::platform {

void ModuleCloser::operator()(void* handle) const {
    FreeLibrary(static_cast<HMODULE>(handle));
}

Module openModule(const std::string& path, std::string& why) {
    // A missing part is told in `why` and in no window of the system.
    DWORD before = 0;
    const bool quiet = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before);
    // What it needs is looked for beside it, not beside the program; the search wants the system's separators.
    std::wstring file = wideText(path);
    for (wchar_t& unit : file)
        if (unit == L'/') unit = L'\\';
    Module module(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!module) why = lastErrorText();
    if (quiet) SetThreadErrorMode(before, nullptr);
    return module;
}

void* functionOf(const Module& module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module.get()), name));
}

std::string moduleFileName(const std::string& name) {
    return name + ".dll";
}

}  // namespace zellab::platform
