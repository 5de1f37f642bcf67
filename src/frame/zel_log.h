#pragma once

/// The log of the image code: standard error, one message in three pieces (prefix "%08d : " with clock(),
/// the message, the level's tail), after the console colour of the level was set on standard output.
/// Always on; the tail of an error carries the file and line of the call.

namespace zellab {

enum class LogLevel { error, debug, info };

/// Prints one message; pieces of concurrent messages do not mix.
[[gnu::format(printf, 4, 5)]] void logMessage(LogLevel level, const char* file, int line, const char* format,
                                              ...);

}  // namespace zellab

#define ZEL_LOG_ERROR(...) ::zellab::logMessage(::zellab::LogLevel::error, __FILE__, __LINE__, __VA_ARGS__)
#define ZEL_LOG_DEBUG(...) ::zellab::logMessage(::zellab::LogLevel::debug, __FILE__, __LINE__, __VA_ARGS__)
#define ZEL_LOG_INFO(...) ::zellab::logMessage(::zellab::LogLevel::info, __FILE__, __LINE__, __VA_ARGS__)
/// An error that always names the same file and line: tools that watch the log look for that text.
#define ZEL_LOG_ERROR_AT(file, line, ...) \
    ::zellab::logMessage(::zellab::LogLevel::error, file, line, __VA_ARGS__)
