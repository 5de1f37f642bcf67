#include "platform/console.h"

#include <unistd.h>

namespace zellab::platform {

namespace {

/// The ANSI sequence of a console attribute.
const char* ansiOf(ConsoleColour colour) {
    switch (colour) {
        case ConsoleColour::brightCyan:
            return "\033[96m";
        case ConsoleColour::brightRed:
            return "\033[91m";
        case ConsoleColour::brightWhite:
            break;
    }
    return "\033[97m";
}

}  // namespace

void setConsoleColour(ConsoleColour colour) {
    if (!isatty(fileno(stdout))) return;
    std::fputs(ansiOf(colour), stdout);
    std::fflush(stdout);  // the text that it colours goes to another stream
}

StreamLock::StreamLock(std::FILE* stream) : m_stream(stream) {
    flockfile(m_stream);
}
StreamLock::~StreamLock() {
    funlockfile(m_stream);
}

}  // namespace zellab::platform
