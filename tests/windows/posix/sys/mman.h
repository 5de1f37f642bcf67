// Pages that nobody may touch, by the system's own calls.
#pragma once

#include <windows.h>

#undef min
#undef max

constexpr int PROT_NONE = 0, PROT_READ = 1, PROT_WRITE = 2, MAP_PRIVATE = 0, MAP_ANONYMOUS = 0,
              _SC_PAGESIZE = 0;

inline void* mmap(void*, std::size_t size, int, int, int, long) {
    return VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
}
inline int mprotect(void* pages, std::size_t size, int) {
    DWORD before = 0;
    return VirtualProtect(pages, size, PAGE_READWRITE, &before) ? 0 : -1;
}
inline int munmap(void* pages, std::size_t) {
    return VirtualFree(pages, 0, MEM_RELEASE) ? 0 : -1;
}
inline long sysconf(int) {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return static_cast<long>(info.dwPageSize);
}
