#include "platform/processorInfo.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace zellab::platform {

int logicalProcessors() {
    // A process bound to one core gets 1. The mask is empty for a process that runs on more than one group of
    // processors.
    DWORD_PTR process = 0, machine = 0;
    if (!GetProcessAffinityMask(GetCurrentProcess(), &process, &machine)) process = 0;
    const int allowed = std::popcount(static_cast<std::uint64_t>(process));
    return std::max(allowed > 0 ? allowed : static_cast<int>(GetActiveProcessorCount(ALL_PROCESSOR_GROUPS)),
                    1);
}

}  // namespace zellab::platform
