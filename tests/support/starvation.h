#pragma once

#include <malloc.h>
#include <sys/resource.h>

#include <cstddef>
#include <cstdlib>

namespace zeltest {

/// The sanitizers bring an allocator of their own, which ends the program where memory does, and reserve terabytes of
/// the address space.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kCanStarve = false;
#else
constexpr bool kCanStarve = true;
#endif

/// Takes all memory that this process can still get, but for one block of `spare` bytes (0: none). For the
/// child of a death test, which ends soon after.
inline void starve(std::size_t spare = 0) {
    // Blocks of any size come from the heap and stay there when they are freed.
    mallopt(M_MMAP_THRESHOLD, 1 << 24);
    mallopt(M_TRIM_THRESHOLD, -1);
    void* const left = spare > 0 ? std::malloc(spare) : nullptr;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = 0;
    setrlimit(RLIMIT_AS, &limit);
    constexpr std::size_t kStep = 16;
    for (std::size_t bytes = std::size_t{1} << 23; bytes >= kStep;) {
        // The optimiser must not take the block for unused.
        if (void* volatile block = std::malloc(bytes); !block)
            bytes = bytes > 2048 ? bytes / 2 : bytes - kStep;
    }
    std::free(left);
}

}  // namespace zeltest
