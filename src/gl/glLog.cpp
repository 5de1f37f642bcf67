#include "gl/glLog.h"

#include <atomic>
#include <cstdio>

#include "frame/zel_log.h"
#include "platform/console.h"

namespace zellab::gl {

namespace {

constexpr const char* kTag = "zelgl";
/// Between debug and error.
constexpr int kInitialThreshold = 3;

std::atomic<int> g_threshold{kInitialThreshold};
/// Some compilers lose a function type's attributes where it is a template's argument by itself.
struct Callback {
    EnvironmentLogCallback function = nullptr;
};
std::atomic<Callback> g_callback{};

}  // namespace

void setEnvironmentLogThreshold(int threshold) {
    g_threshold = threshold;
}

void setEnvironmentLogCallback(EnvironmentLogCallback callback) {
    g_callback = Callback{callback};
}

void logEnvironment(int level, const char* format, ...) {
    if (g_threshold > level) return;
    std::va_list arguments;
    va_start(arguments, format);
    const bool taken =
        logToHost(level >= kEnvironmentError ? LogLevel::error : LogLevel::debug, nullptr, format, arguments);
    va_end(arguments);
    if (!taken) {
        const platform::StreamLock lock(stdout);
        std::printf(level >= kEnvironmentError ? "<[%s]   ERROR:> " : "<[%s]   DEBUG:> ", kTag);
        va_start(arguments, format);
        std::vprintf(format, arguments);
        va_end(arguments);
        std::putchar('\n');
    }
    if (const EnvironmentLogCallback callback = g_callback.load().function) {
        va_start(arguments, format);
        callback(level, format, arguments);
        va_end(arguments);
    }
}

void RendererLog::error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    if (!logToHost(LogLevel::error, nullptr, format, arguments)) write("[ERROR  ] ", format, arguments);
    va_end(arguments);
}

void RendererLog::debug(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    if (!logToHost(LogLevel::debug, nullptr, format, arguments)) write("[DEBUG  ] ", format, arguments);
    va_end(arguments);
}

void RendererLog::write(const char* prefix, const char* format, std::va_list arguments) {
    const std::lock_guard guard(m_mutex);
    // The module's mutex orders its own lines; the stream's lock keeps the pieces of two modules apart.
    const platform::StreamLock lock(stderr);
    std::fputs(prefix, stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
}

}  // namespace zellab::gl
