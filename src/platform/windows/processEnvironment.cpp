#include "platform/processEnvironment.h"

#include <windows.h>

#include "platform/windows/wideText.h"

namespace zellab::platform {

std::optional<std::string> environmentText(const char* name) {
    // Asked of the system: the C runtime's copy belongs to the one module that holds it.
    const std::wstring wideName = wideText(name);
    std::wstring value;
    for (DWORD room = 128;;) {
        value.resize(room);
        SetLastError(ERROR_SUCCESS);
        const DWORD units = GetEnvironmentVariableW(wideName.c_str(), value.data(), room);
        if (units == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
        if (units < room) {
            value.resize(units);
            return utf8Text(value);
        }
        room = units;  // what it takes, its end included
    }
}

std::optional<std::string> trustedEnvironment(const char* name) {
    // A process with more rights than its user does not get that user's process's environment here.
    return environmentText(name);
}

std::filesystem::path userDataFolder() {
    if (const auto told = environmentText("LOCALAPPDATA"); told && std::filesystem::path(*told).is_absolute())
        return *told;
    return {};
}

}  // namespace zellab::platform
