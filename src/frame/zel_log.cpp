#include "frame/zel_log.h"

#include <cstdio>
#include <ctime>
#include <string>

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

/// What printf would print.
[[gnu::format(printf, 1, 0)]] std::string formatted(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(static_cast<std::size_t>(length > 0 ? length : 0), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace

bool logToHost(LogLevel level, const char* source, const char* format, std::va_list arguments) {
    const CallSettings* const settings = callSettings();
    if (!settings || !settings->log) return settings && settings->silent;
    settings->log(settings->logUser, level, formatted(format, arguments).c_str(), source);
    return true;
}

void logMessage(LogLevel level, const char* file, int line, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const bool isError = level == LogLevel::error;
    std::string source;
    if (const CallSettings* settings = callSettings(); settings && settings->log && isError)
        source.append(file).append("(").append(std::to_string(line)).append(")");
    if (!logToHost(level, isError ? source.c_str() : nullptr, format, arguments)) {
        // The colour goes to standard output although the text goes to standard error, and it is not restored
        // afterwards: hosts that share their console with this library rely on the pairing.
        platform::setConsoleColour(colourOf(level));
        const platform::StreamLock lock(stderr);
        std::fprintf(stderr, "%08d : ", static_cast<int>(std::clock()));
        std::vfprintf(stderr, format, arguments);
        if (isError) {
            std::fprintf(stderr, "\r\n%s(%d)\r\n", file, line);
        } else {
            std::fputs("\r\n", stderr);
        }
    }
    va_end(arguments);
}

void printRemark(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    if (!logToHost(LogLevel::info, nullptr, format, arguments)) {
        const platform::StreamLock lock(stdout);
        std::vprintf(format, arguments);
        std::putchar('\n');
    }
    va_end(arguments);
}

}  // namespace zellab
