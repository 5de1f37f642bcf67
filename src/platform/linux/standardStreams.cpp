#include "platform/standardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace zellab::platform {

namespace {

bool writeAll(int descriptor, const void* data, std::size_t size) {
    const auto* at = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const ssize_t count = ::write(descriptor, at, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        at += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

std::ptrdiff_t readStandardInput(void* into, std::size_t most) {
    ssize_t count = 0;
    do count = read(STDIN_FILENO, into, most);
    while (count < 0 && errno == EINTR);
    return count;
}

bool writeStandardOutput(std::span<const unsigned char> bytes) {
    return writeAll(STDOUT_FILENO, bytes.data(), bytes.size());
}

ErrorStream::ErrorStream() : m_descriptor(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {}

ErrorStream::~ErrorStream() {
    if (m_descriptor >= 0) close(m_descriptor);
}

void ErrorStream::write(const std::string& text) const {
    if (m_descriptor >= 0) writeAll(m_descriptor, text.data(), text.size());
}

bool ErrorStream::isTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace zellab::platform
