// The generator of Windows, by its published formula, in the place of this system's: what patches holes and what adds grain
// draw on the C runtime's own. Included by the one source of a program; on Windows it is nothing.
#pragma once

#ifndef _WIN32

// The library looks for them in the program first.
#define ZEL_SHOWN __attribute__((visibility("default")))

namespace {
thread_local unsigned t_seed = 1;
}

extern "C" ZEL_SHOWN void srand(unsigned seed) {
    t_seed = seed;
}
extern "C" ZEL_SHOWN int rand() {
    t_seed = t_seed * 214013u + 2531011u;
    return static_cast<int>(t_seed >> 16 & 0x7FFF);
}

#endif
