#pragma once

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "logReader.h"
#include "messages.h"

namespace zel {

/// Stands between the library's output and the user while it lives. The library prints its log to standard
/// error and some diagnostics to standard output; both streams lead into pipes here, which one thread drains
/// at all times, so that the library never waits. An error becomes one "zel: library: ..." line; remarks
/// appear only in verbose mode; lines of unknown form (a driver's warning, a sanitizer's report) pass
/// through at once. Standard output of the process stays free for results.
///
/// One object at a time. Both streams are restored, and every line is told, when it goes.
class LogCapture {
public:
    LogCapture(Messages& messages, bool verbose);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Waits until everything written so far was told, so that the library's lines stand before the
    /// command's own word on the same input.
    void sync();

    /// Names the input at work, for the lines that come while it is the only one.
    void enter(const std::string& input);
    /// The input is through; its lines were told.
    void leave(const std::string& input);

private:
    /// One diverted stream: where it led before, and the reading end of the pipe where it leads now.
    struct Diversion {
        int target, saved = -1, reader = -1;
    };

    void reachMark(bool last);
    void divert(Diversion& diversion);
    void restore(Diversion& diversion);
    void drain();
    void tell(const LogLine& line);
    void tellDiagnostic(const std::string& line);
    std::string inputAtWork();

    Messages& m_messages;
    const bool m_verbose;
    Diversion m_out{1}, m_err{2};
    std::mutex m_mutex;
    std::condition_variable m_reached;
    long m_asked = 0, m_told = 0;  // numbers of sync marks
    bool m_stopping = false;
    std::multiset<std::string> m_inputs;
    std::thread m_drainer;  // last: starts when all else stands
};

}  // namespace zel
