#include "logCapture.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <system_error>

namespace zel {

namespace {

/// A line that the library cannot write: it asks the drainer to report how far it is.
constexpr const char* kSyncMark = "\x01zel-sync ";

/// Failures to load a picture: the command tells them itself, with the file's name.
constexpr const char* kLoaderSource = "stb_image_util";

/// Writes a whole short text to a descriptor; pipes take it in one piece.
void writeText(int fd, const std::string& text) {
    while (write(fd, text.data(), text.size()) < 0 && errno == EINTR) {
    }
}

/// The number in a sync mark, 0 for other lines.
long syncNumber(const std::string& line) {
    return line.rfind(kSyncMark, 0) == 0 ? std::stol(line.substr(std::strlen(kSyncMark))) : 0;
}

/// Reads what is there. False at the end of the stream.
bool readSome(int fd, const std::function<void(const char*, std::size_t)>& take) {
    std::array<char, 4096> bytes;
    const ssize_t count = read(fd, bytes.data(), bytes.size());
    if (count > 0) take(bytes.data(), static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

}  // namespace

LogCapture::LogCapture(Messages& messages, bool verbose) : m_messages(messages), m_verbose(verbose) {
    divert(m_out);
    divert(m_err);
    m_drainer = std::thread([this] { drain(); });
}

LogCapture::~LogCapture() {
    reachMark(true);  // the drainer ends at this mark, whoever else still holds the pipe
    m_drainer.join();
    restore(m_out);
    restore(m_err);
}

void LogCapture::divert(Diversion& diversion) {
    std::fflush(diversion.target == STDOUT_FILENO ? stdout : stderr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    diversion.reader = ends[0];
    diversion.saved = fcntl(diversion.target, F_DUPFD_CLOEXEC, 3);  // -1 where the stream was closed
    dup2(ends[1], diversion.target);
    close(ends[1]);
}

void LogCapture::restore(Diversion& diversion) {
    if (diversion.saved >= 0) {
        dup2(diversion.saved, diversion.target);
        close(diversion.saved);
    } else {
        close(diversion.target);
    }
    close(diversion.reader);
}

void LogCapture::sync() {
    reachMark(false);
}

void LogCapture::reachMark(bool last) {
    std::unique_lock lock(m_mutex);
    const long number = ++m_asked;
    m_stopping = last;
    lock.unlock();
    // The newline in front ends a line that somebody left open.
    std::string mark("\n");
    mark += kSyncMark;
    mark += std::to_string(number) + "\n";
    std::fflush(stdout);
    writeText(STDOUT_FILENO, mark);
    flockfile(stderr);  // a message that is printed in pieces stays whole
    writeText(STDERR_FILENO, mark);
    funlockfile(stderr);
    lock.lock();
    m_reached.wait(lock, [&] { return m_told >= number; });
}

void LogCapture::enter(const std::string& input) {
    const std::lock_guard lock(m_mutex);
    m_inputs.insert(input);
}

void LogCapture::leave(const std::string& input) {
    sync();
    const std::lock_guard lock(m_mutex);
    m_inputs.erase(m_inputs.find(input));
}

void LogCapture::drain() {
    long outMark = 0, errMark = 0;
    LogReader err([&](const LogLine& line) {
        if (const long number = syncNumber(line.text))
            errMark = std::max(errMark, number);
        else
            tell(line);
    });
    // Standard output has no forms: the reader only cuts it into lines.
    LogReader out([&](const LogLine& line) {
        if (const long number = syncNumber(line.text))
            outMark = std::max(outMark, number);
        else
            tellDiagnostic(line.text);
    });
    for (bool open = true; open;) {
        std::array<pollfd, 2> ready{{{m_out.reader, POLLIN, 0}, {m_err.reader, POLLIN, 0}}};
        if (poll(ready.data(), ready.size(), -1) < 0 && errno != EINTR) break;
        if (ready[0].revents)
            open = readSome(m_out.reader, [&](const char* b, std::size_t n) { out.feed(b, n); });
        if (open && ready[1].revents)
            open = readSome(m_err.reader, [&](const char* b, std::size_t n) { err.feed(b, n); });
        const std::lock_guard lock(m_mutex);
        m_told = std::max(m_told, std::min(outMark, errMark));
        if (m_stopping && m_told == m_asked) open = false;
        m_reached.notify_all();
    }
    const std::lock_guard lock(m_mutex);
    m_told = std::numeric_limits<long>::max();  // nobody shall wait any more
    m_reached.notify_all();
}

void LogCapture::tell(const LogLine& line) {
    switch (line.kind) {
        case LogLine::Kind::error:
            if (m_verbose)
                m_messages.error(inputAtWork(), "library: " + line.text +
                                                    (line.source.empty() ? "" : " [" + line.source + "]"));
            else if (line.source.find(kLoaderSource) == std::string::npos)
                m_messages.error(inputAtWork(), "library: " + line.text);
            break;
        case LogLine::Kind::remark:
            if (m_verbose) m_messages.raw(line.text);
            break;
        case LogLine::Kind::foreign:
            m_messages.raw(line.text);
            break;
    }
}

void LogCapture::tellDiagnostic(const std::string& line) {
    if (m_verbose) m_messages.raw(line);
}

std::string LogCapture::inputAtWork() {
    const std::lock_guard lock(m_mutex);
    return m_inputs.size() == 1 ? *m_inputs.begin() : std::string();
}

}  // namespace zel
