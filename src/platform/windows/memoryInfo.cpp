#include "platform/memoryInfo.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace zellab::platform {

std::size_t physicalMemory() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (!GlobalMemoryStatusEx(&status)) return SIZE_MAX;
    // A 32-bit process has fewer addresses than the machine may have memory.
    return static_cast<std::size_t>(
        std::min({status.ullTotalPhys, status.ullTotalVirtual, static_cast<DWORDLONG>(SIZE_MAX)}));
}

}  // namespace zellab::platform
