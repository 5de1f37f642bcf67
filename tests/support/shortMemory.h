#pragma once

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace zeltest {

/// The sanitizers bring an allocator of their own, which ends the program where memory does, and reserve
/// terabytes of the address space.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kCanStarve = false;
#else
constexpr bool kCanStarve = true;
#endif

enum class ShortOfMemory { done, refused, died };

/// What becomes of body() in a child process whose memory is all taken but for one block of `spare` bytes
/// (0: none): it ends, it throws std::bad_alloc, or the process dies.
template <typename Body>
ShortOfMemory inShortMemory(std::size_t spare, const Body& body) {
    const pid_t child = fork();
    if (child == 0) {
        // Blocks of any size come from the heap and stay there when they are freed.
        mallopt(M_MMAP_THRESHOLD, 1 << 24);
        mallopt(M_TRIM_THRESHOLD, -1);
        // The optimiser must not take these blocks for unused.
        void* volatile left = spare > 0 ? std::malloc(spare) : nullptr;
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = 0;
        setrlimit(RLIMIT_AS, &limit);
        constexpr std::size_t kStep = 16;
        for (std::size_t bytes = std::size_t{1} << 23; bytes >= kStep;) {
            if (void* volatile block = std::malloc(bytes); !block)
                bytes = bytes > 2048 ? bytes / 2 : bytes - kStep;
        }
        std::free(left);
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
