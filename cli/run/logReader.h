#pragma once

#include <functional>
#include <string>
#include <utility>

namespace zel {

/// A line that the library wrote, told apart by its form.
struct LogLine {
    enum class Kind { error, remark, foreign };
    Kind kind = Kind::foreign;  // remark: debug and info; foreign: not of the library's forms
    std::string text;           // an error's message without its clock and tail; else the line as it is
    std::string source;         // an error's file and line, where told
};

/// Cuts what arrives on the library's standard error into lines and tells them apart. The library's log
/// prints "%08d : MESSAGE", and behind an error a second line "FILE(LINE)"; the graphics code prints
/// "[ERROR  ] " and "[DEBUG  ] ".
class LogReader {
public:
    explicit LogReader(std::function<void(const LogLine&)> sink) : m_sink(std::move(sink)) {}

    /// Takes bytes as they come, in pieces of any size.
    void feed(const char* bytes, std::size_t count);
    /// Passes on what is held back: a log line that could still turn out to be an error, half a line.
    void flush();

private:
    void takeLine(std::string line);
    void releasePending();

    std::function<void(const LogLine&)> m_sink;
    std::string m_partial;  // the beginning of a line
    std::string m_pending;  // a log line whose kind the next line decides
};

}  // namespace zel
