#include "platform/outputSignals.h"

#include <windows.h>

#include <array>
#include <atomic>

#include "platform/windows/wideText.h"

namespace zellab::platform {

namespace {

constexpr std::size_t kFiles = 128, kPathRoom = 4096;

enum State : int { unused, inUse, noted };

/// A path for the thread that the system starts when the program is asked to end. Whoever changes the state from
/// `noted` owns the path from then on, be it the file's owner or that thread.
struct Note {
    std::atomic<int> state;
    wchar_t path[kPathRoom];
};

Note g_notes[kFiles];

bool change(Note& note, int from, int to) {
    return note.state.compare_exchange_strong(from, to);
}

/// An interrupt, a closed console window, or the end of the session.
BOOL WINAPI removeAndPass(DWORD) {
    for (Note& note : g_notes)
        if (change(note, noted, inUse)) DeleteFileW(note.path);
    return FALSE;  // the next handler ends the process
}

}  // namespace

void removeUnfinishedFilesOnSignals() {
    SetConsoleCtrlHandler(removeAndPass, TRUE);
}

UnfinishedFile::UnfinishedFile(const char* path) : m_slot(kFiles) {
    const std::wstring wide = wideText(path);
    if (wide.size() >= kPathRoom) return;
    for (m_slot = 0; m_slot < kFiles && !change(g_notes[m_slot], unused, inUse);) ++m_slot;
    if (m_slot == kFiles) return;
    wide.copy(g_notes[m_slot].path, wide.size());
    g_notes[m_slot].path[wide.size()] = L'\0';
    g_notes[m_slot].state = noted;
}

UnfinishedFile::~UnfinishedFile() {
    // Where the other thread has the note already, the process is about to end.
    if (m_slot < kFiles) change(g_notes[m_slot], noted, unused);
}

}  // namespace zellab::platform
