#pragma once

#include <cstdarg>
#include <mutex>

/// The two log styles of the code that works with OpenGL.
namespace zellab::gl {

/// Levels of the environment log, as numbers that the threshold is compared with.
inline constexpr int kEnvironmentDebug = 2;
inline constexpr int kEnvironmentError = 5;

/// Receives every line that the environment log has printed.
using EnvironmentLogCallback = void (*)(int level, const char* format, std::va_list arguments);

/// A line prints when the threshold does not exceed its level. Initially 3: errors print, debug lines do not.
void setEnvironmentLogThreshold(int threshold);
void setEnvironmentLogCallback(EnvironmentLogCallback callback);

/// One line on standard output behind "<[zelgl]   ERROR:> " or "<[zelgl]   DEBUG:> ".
[[gnu::format(printf, 2, 3)]] void logEnvironment(int level, const char* format, ...);

/// The renderer's log: one line on standard error behind "[ERROR  ] " or "[DEBUG  ] ", without a level
/// filter. Each module has an object of its own with static lifetime.
class RendererLog {
public:
    [[gnu::format(printf, 2, 3)]] void error(const char* format, ...);
    [[gnu::format(printf, 2, 3)]] void debug(const char* format, ...);

private:
    void write(const char* prefix, const char* format, std::va_list arguments);
    std::mutex m_mutex;
};

}  // namespace zellab::gl
