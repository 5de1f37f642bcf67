#pragma once

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <new>

#include "support/starvation.h"

namespace zeltest {

enum class ShortOfMemory { done, refused, died };

/// What becomes of body() in a child process that may take `spare` more bytes than it has: it ends, it throws
/// std::bad_alloc, or the process dies.
template <typename Body>
ShortOfMemory inShortMemory(std::size_t spare, const Body& body) {
    const pid_t child = fork();
    if (child == 0) {
        malloc_trim(0);
        unsigned long pages = 0;
        std::FILE* const statm = std::fopen("/proc/self/statm", "r");
        if (!statm || std::fscanf(statm, "%lu", &pages) != 1) _exit(2);
        std::fclose(statm);
        const rlim_t limit = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + spare;
        const rlimit address{limit, limit};
        if (setrlimit(RLIMIT_AS, &address) != 0) _exit(2);
        try {
            body();
        } catch (const std::bad_alloc&) {
            _exit(1);
        }
        _exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return ShortOfMemory::died;
    return WEXITSTATUS(status) == 0   ? ShortOfMemory::done
           : WEXITSTATUS(status) == 1 ? ShortOfMemory::refused
                                      : ShortOfMemory::died;
}

}  // namespace zeltest
