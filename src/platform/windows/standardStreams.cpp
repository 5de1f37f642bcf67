#include "platform/standardStreams.h"

#include <io.h>
#include <windows.h>

#include <algorithm>

namespace zellab::platform {

namespace {

constexpr int kInput = 0, kOutput = 1, kError = 2;

/// Consoles and pipes refuse more at once.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 15;

bool writeAll(int descriptor, const void* data, std::size_t size) {
    const auto* at = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const int count = _write(descriptor, at, static_cast<unsigned>(std::min(size, kMostAtOnce)));
        if (count <= 0) return false;
        at += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

std::ptrdiff_t readStandardInput(void* into, std::size_t most) {
    return _read(kInput, into, static_cast<unsigned>(std::min(most, kMostAtOnce)));
}

bool writeStandardOutput(std::span<const unsigned char> bytes) {
    return writeAll(kOutput, bytes.data(), bytes.size());
}

ErrorStream::ErrorStream() : m_descriptor(_dup(kError)) {
    if (m_descriptor >= 0)
        SetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(m_descriptor)), HANDLE_FLAG_INHERIT, 0);
}

ErrorStream::~ErrorStream() {
    if (m_descriptor >= 0) _close(m_descriptor);
}

void ErrorStream::write(const std::string& text) const {
    if (m_descriptor >= 0) writeAll(m_descriptor, text.data(), text.size());
}

bool ErrorStream::isTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

}  // namespace zellab::platform
