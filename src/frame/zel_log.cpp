#include "frame/zel_log.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "platform/console.h"

namespace zellab {

namespace {

/// Console attribute of each level, in the numbering of the Windows console.
platform::ConsoleColour colourOf(LogLevel level) {
    switch (level) {
        case LogLevel::error:
            return platform::ConsoleColour::brightRed;
        case LogLevel::debug:
            return platform::ConsoleColour::brightCyan;
        case LogLevel::info:
            break;
    }
    return platform::ConsoleColour::brightWhite;
}

}  // namespace

void logMessage(LogLevel level, const char* file, int line, const char* format, ...) {
    // The colour goes to standard output although the text goes to standard error, and it is not restored
    // afterwards: hosts that share their console with this library rely on the pairing.
    platform::setConsoleColour(colourOf(level));
    const platform::StreamLock lock(stderr);
    std::fprintf(stderr, "%08d : ", static_cast<int>(std::clock()));
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    if (level == LogLevel::error) {
        std::fprintf(stderr, "\r\n%s(%d)\r\n", file, line);
    } else {
        std::fputs("\r\n", stderr);
    }
}

}  // namespace zellab
