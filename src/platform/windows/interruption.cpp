#include "platform/interruption.h"

#include <windows.h>

#include <atomic>
#include <cstdio>

namespace zellab::platform {

namespace {

/// How the system's own handler ends a process that was interrupted.
constexpr UINT kInterrupted = 0xC000013A;

std::atomic<bool> g_asked{false};

/// Runs on a thread of its own.
BOOL WINAPI note(DWORD event) {
    const bool isInterrupt = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    return isInterrupt && !g_asked.exchange(true);  // FALSE: the next handler ends the process
}

}  // namespace

Interruption::Interruption() {
    g_asked = false;
    SetConsoleCtrlHandler(note, TRUE);
}

Interruption::~Interruption() {
    SetConsoleCtrlHandler(note, FALSE);
}

bool Interruption::asked() {
    return g_asked;
}

void Interruption::finish() {
    if (!g_asked) return;
    std::fflush(nullptr);
    ExitProcess(kInterrupted);
}

}  // namespace zellab::platform
