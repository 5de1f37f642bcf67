#include "depth/depthLog.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "frame/zel_log.h"

namespace zellab {

void logDepth(const char* format, ...) {
    std::va_list arguments, again;
    va_start(arguments, format);
    if (logToHost(LogLevel::debug, nullptr, format, arguments)) {
        va_end(arguments);
        return;
    }
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string line(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
    std::vsnprintf(line.data(), line.size(), format, again);
    va_end(again);
    line.back() = '\n';  // over the terminating zero
    line.insert(0, "[DEBUG  ] ");
    std::fwrite(line.data(), 1, line.size(), stderr);  // one piece: lines of several threads do not mix
}

}  // namespace zellab
