#include "platform/memoryInfo.h"

#include <unistd.h>

#include <cstdint>

namespace zellab::platform {

std::size_t physicalMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES), pageBytes = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageBytes <= 0) return SIZE_MAX;
    return static_cast<std::size_t>(pages) * static_cast<std::size_t>(pageBytes);
}

}  // namespace zellab::platform
