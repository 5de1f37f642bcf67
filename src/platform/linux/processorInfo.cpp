#include "platform/processorInfo.h"

#include <sched.h>
#include <sys/sysinfo.h>

#include <algorithm>

namespace zellab::platform {

int logicalProcessors() {
    // A process bound to one core gets 1. Machines with more processors than the set holds count them all.
    cpu_set_t allowed;
    const bool known = sched_getaffinity(0, sizeof allowed, &allowed) == 0;
    return std::max(known ? CPU_COUNT(&allowed) : get_nprocs(), 1);
}

}  // namespace zellab::platform
