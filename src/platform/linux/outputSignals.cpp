#include "platform/outputSignals.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstring>

namespace zellab::platform {

namespace {

constexpr std::size_t kFiles = 128, kPathRoom = 4096;
constexpr std::array kEndings = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

enum State : int { unused, inUse, noted };

/// A path where a signal handler can read it: memory that is always there. Whoever changes the state from
/// `noted` owns the path from then on, be it the file's owner or the handler.
struct Note {
    std::atomic<int> state;
    char path[kPathRoom];
};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler changes it");

Note g_notes[kFiles];

bool change(Note& note, int from, int to) {
    return note.state.compare_exchange_strong(from, to);
}

/// Calls nothing but what a signal handler may call. The signal was set back to what ends the process, and
/// comes again as soon as this returns.
void removeAndEnd(int signal) {
    for (Note& note : g_notes)
        if (change(note, noted, inUse)) unlink(note.path);
    raise(signal);
}

/// Only where nobody, a parent included, has decided otherwise.
void replaceDefault(int signal, const struct sigaction& action) {
    struct sigaction before {};
    if (sigaction(signal, nullptr, &before) == 0 && !(before.sa_flags & SA_SIGINFO) &&
        before.sa_handler == SIG_DFL)
        sigaction(signal, &action, nullptr);
}

}  // namespace

void removeUnfinishedFilesOnSignals() {
    struct sigaction ending {};
    ending.sa_handler = removeAndEnd;
    ending.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&ending.sa_mask);
    for (const int signal : kEndings) sigaddset(&ending.sa_mask, signal);
    for (const int signal : kEndings) replaceDefault(signal, ending);

    struct sigaction nothing {};
    nothing.sa_handler = SIG_IGN;
    replaceDefault(SIGXFSZ, nothing);
}

UnfinishedFile::UnfinishedFile(const char* path) : m_slot(kFiles) {
    const std::size_t bytes = std::strlen(path) + 1;
    if (bytes > kPathRoom) return;
    for (m_slot = 0; m_slot < kFiles && !change(g_notes[m_slot], unused, inUse);) ++m_slot;
    if (m_slot == kFiles) return;
    std::memcpy(g_notes[m_slot].path, path, bytes);
    g_notes[m_slot].state = noted;
}

UnfinishedFile::~UnfinishedFile() {
    // Where the handler has the note already, the process is about to end.
    if (m_slot < kFiles) change(g_notes[m_slot], noted, unused);
}

}  // namespace zellab::platform
