#include "platform/processorInfo.h"

#include <sys/sysinfo.h>

#include <algorithm>

namespace zellab::platform {

int logicalProcessors() {
    // glibc counts the processors of the affinity mask, so a process bound to one core gets 1.
    return std::max(get_nprocs(), 1);
}

}  // namespace zellab::platform
