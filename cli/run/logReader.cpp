#include "logReader.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace zel {

namespace {

constexpr std::size_t kClockDigits = 8;  // at least; longer runs have more
constexpr const char* kClockEnd = " : ";

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// Length of the clock prefix of a log line, 0 for other lines.
std::size_t clockPrefix(const std::string& line) {
    std::size_t digits = 0;
    while (digits < line.size() && (isDigit(line[digits]) || (digits == 0 && line[0] == '-'))) ++digits;
    return digits >= kClockDigits && line.compare(digits, 3, kClockEnd) == 0 ? digits + 3 : 0;
}

/// Whether a line is the tail of an error, "some/file.cpp(123)".
bool isErrorTail(const std::string& line) {
    if (line.size() < 4 || line.back() != ')') return false;
    const std::size_t open = line.rfind('(');
    return open != std::string::npos && open > 0 && open + 2 < line.size() &&
           std::all_of(line.begin() + static_cast<std::ptrdiff_t>(open) + 1, line.end() - 1, isDigit);
}

bool startsWith(const std::string& line, const char* prefix) {
    return line.rfind(prefix, 0) == 0;
}

}  // namespace

void LogReader::feed(const char* bytes, std::size_t count) {
    m_partial.append(bytes, count);
    std::size_t begin = 0;
    for (std::size_t end; (end = m_partial.find('\n', begin)) != std::string::npos; begin = end + 1)
        takeLine(m_partial.substr(begin, end - begin));
    m_partial.erase(0, begin);
}

void LogReader::flush() {
    if (!m_partial.empty()) takeLine(std::exchange(m_partial, {}));
    releasePending();
}

void LogReader::takeLine(std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!m_pending.empty() && isErrorTail(line)) {
        std::string message = std::exchange(m_pending, {});
        message.erase(message.find_last_not_of(' ') + 1);
        m_sink({LogLine::Kind::error, message.substr(clockPrefix(message)), line});
        return;
    }
    // Some messages end with a line end of their own: their tail comes after an empty line.
    if (line.empty()) return;
    releasePending();
    if (clockPrefix(line) > 0)
        m_pending = line;
    else if (startsWith(line, "[ERROR  ] "))
        m_sink({LogLine::Kind::error, line.substr(10), {}});
    else if (startsWith(line, "[DEBUG  ] "))
        m_sink({LogLine::Kind::remark, line, {}});
    else
        m_sink({LogLine::Kind::foreign, line, {}});
}

void LogReader::releasePending() {
    if (m_pending.empty()) return;
    const std::string line = std::exchange(m_pending, {});
    m_sink({LogLine::Kind::remark, line, {}});
}

}  // namespace zel
