#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "platform/standardStreams.h"

namespace zelcli {

/// What the command tells its user beside results: errors, notes and progress, all on standard error and
/// each in one line. It keeps its own copy of the stream, so that it reaches the user while the library's
/// output is diverted (logCapture.h). Safe to use from many threads.
///
/// Progress is a bar on a terminal, and elsewhere a line for every finished input.
class Messages {
public:
    enum class Style { automatic, terminal, lines };

    explicit Messages(bool quiet, Style style = Style::automatic);
    ~Messages();
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    /// "zel: FILE: WHY"; an empty file is left out. Errors are told in quiet mode as well.
    void error(const std::string& file, const std::string& why);
    /// The same for what does not stop the work; not in quiet mode.
    void note(const std::string& file, const std::string& text);
    /// "zel: TEXT": the last word of a run; not in quiet mode.
    void closing(const std::string& text);
    /// A line as it is, for output that passes through.
    void raw(const std::string& line);

    /// Starts a progress of `count` inputs.
    void startProgress(std::size_t count);
    /// Input `index` has come to `done01` of its way, and is now in `stage`.
    void progress(std::size_t index, const std::string& stage, double done01);
    /// Input `index` is done; `line` says it where there is no bar. A failed input has told its error
    /// already.
    void finished(std::size_t index, const std::string& line, bool failed);
    /// Removes the bar.
    void endProgress();

private:
    void print(const std::string& line);
    void writeLine(const std::string& line);
    void drawBar(bool force);

    const bool m_quiet;
    const bool m_terminal;
    const zellab::platform::ErrorStream m_stream;
    std::mutex m_mutex;
    std::vector<double> m_done;  // one share for every input
    std::size_t m_finished = 0;
    std::string m_stage;
    bool m_barShown = false;
    std::chrono::steady_clock::time_point m_lastDrawn;
};

/// A text as one line that cannot disturb a terminal: control characters become '?'.
std::string oneLine(const std::string& text);

}  // namespace zelcli
