#include "failingCalls.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>

extern "C" {
// The allocator beneath, by the names that it has within the C library.
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace zeltest {

namespace {

std::atomic<bool> g_counts{false}, g_failed{false};
std::atomic<Supply> g_supply{Supply::memory};
std::atomic<long> g_asked{0}, g_fails{-1}, g_live{0};
char* g_place = nullptr;
std::size_t g_placeRoom = 0;
thread_local bool t_looksBack = false;  // what tells where a call came from allocates itself

/// The first caller behind the runtime libraries.
void noteCaller() {
    void* frames[32];
    const int count = backtrace(frames, static_cast<int>(std::size(frames)));
    for (int i = 2; i < count; ++i) {
        Dl_info info;
        if (!dladdr(frames[i], &info) || !info.dli_fname) continue;
        const char* const slash = std::strrchr(info.dli_fname, '/');
        const char* const file = slash ? slash + 1 : info.dli_fname;
        if (std::strncmp(file, "libc.so", 7) == 0 || std::strncmp(file, "libstdc++", 9) == 0 ||
            std::strncmp(file, "libgcc", 6) == 0 || std::strncmp(file, "ld-", 3) == 0)
            continue;
        if (g_placeRoom > 0) std::strncpy(g_place, file, g_placeRoom - 1);
        return;
    }
}

bool fails(Supply supply) {
    if (!g_counts || g_supply != supply || t_looksBack || g_asked++ != g_fails) return false;
    g_failed = true;
    t_looksBack = true;
    noteCaller();
    t_looksBack = false;
    errno = ENOMEM;
    return true;
}

void* counted(void* block) {
    if (block) ++g_live;
    return block;
}

}  // namespace

void startCounting(Supply supply, long k) {
    static const int kLoaded = [] {  // what looks back is loaded at its first use
        void* frame[1];
        return backtrace(frame, 1);
    }();
    g_supply = supply;
    g_failed = false;
    g_asked = 0;
    g_fails = kLoaded > 0 ? k : -1;
    g_counts = true;
}

long endCounting() {
    g_counts = false;
    return g_asked;
}

bool hasFailed() {
    return g_failed;
}

void showFailurePlace(char* text, std::size_t room) {
    g_place = text;
    g_placeRoom = room;
}

long liveBlocks() {
    return g_live;
}

}  // namespace zeltest

using zeltest::counted, zeltest::fails, zeltest::Supply;

// Libraries are to find these before the C library's own.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t bytes) {
    return fails(Supply::memory) ? nullptr : counted(__libc_malloc(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) {
    return fails(Supply::memory) ? nullptr : counted(__libc_calloc(count, bytes));
}

void* realloc(void* block, std::size_t bytes) {
    if (fails(Supply::memory)) return nullptr;
    void* const moved = __libc_realloc(block, bytes);
    if (!block) return counted(moved);
    if (!moved && bytes == 0) --zeltest::g_live;
    return moved;
}

void* memalign(std::size_t alignment, std::size_t bytes) {
    return fails(Supply::memory) ? nullptr : counted(__libc_memalign(alignment, bytes));
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return memalign(alignment, bytes);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t bytes) {
    void* const block = memalign(alignment, bytes);
    if (!block) return ENOMEM;
    *out = block;
    return 0;
}

void free(void* block) {
    if (block) --zeltest::g_live;
    __libc_free(block);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) {
    if (fails(Supply::threads)) return EAGAIN;
    static const auto create =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, start, argument);
}
}
#pragma GCC visibility pop
