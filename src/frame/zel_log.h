#pragma once

#include <cstdarg>

#include "frame/callSettings.h"

/// The log of the image code: standard error, one message in three pieces (prefix "%08d : " with clock(),
/// the message, the level's tail), after the console colour of the level was set on standard output.
/// Always on; the tail of an error carries the file and line of the call. A host that takes its call's messages
/// (frame/callSettings.h) gets them in place of the streams.

namespace zellab {

/// Prints one message; pieces of concurrent messages do not mix.
[[gnu::format(printf, 4, 5)]] void logMessage(LogLevel level, const char* file, int line, const char* format,
                                              ...);

/// Hands a message to the host that takes those of this call; false where none does. `source` may be null.
/// For the logs that have a form of their own.
[[gnu::format(printf, 3, 0)]] bool logToHost(LogLevel level, const char* source, const char* format,
                                             std::va_list arguments);

/// A remark without prefix or tail on standard output.
[[gnu::format(printf, 1, 2)]] void printRemark(const char* format, ...);

}  // namespace zellab

#define ZEL_LOG_ERROR(...) ::zellab::logMessage(::zellab::LogLevel::error, __FILE__, __LINE__, __VA_ARGS__)
#define ZEL_LOG_DEBUG(...) ::zellab::logMessage(::zellab::LogLevel::debug, __FILE__, __LINE__, __VA_ARGS__)
#define ZEL_LOG_INFO(...) ::zellab::logMessage(::zellab::LogLevel::info, __FILE__, __LINE__, __VA_ARGS__)
/// An error that always names the same file and line: tools that watch the log look for that text.
#define ZEL_LOG_ERROR_AT(file, line, ...) \
    ::zellab::logMessage(::zellab::LogLevel::error, file, line, __VA_ARGS__)
