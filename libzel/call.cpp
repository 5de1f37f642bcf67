#include "libzel/call.h"

#include <array>
#include <cstdio>

namespace zel {

namespace {

/// Messages are one line, and a line that does not fit says enough.
constexpr std::size_t kLongestMessage = 1024;

thread_local std::array<char, kLongestMessage> t_message{};

}  // namespace

zel_status fail(zel_status status, const char* why) noexcept {
    std::snprintf(t_message.data(), t_message.size(), "%s", why);
    return status;
}

}  // namespace zel

const char* zel_message(void) {
    return zel::t_message.data();
}

const char* zel_status_name(zel_status status) {
    if (!zel::isOneOf(status, ZEL_OK, ZEL_FAILED)) return "unknown";
    switch (status) {
        case ZEL_OK:
            return "ZEL_OK";
        case ZEL_BAD_ARGUMENT:
            return "ZEL_BAD_ARGUMENT";
        case ZEL_UNKNOWN_NAME:
            return "ZEL_UNKNOWN_NAME";
        case ZEL_BAD_VALUE:
            return "ZEL_BAD_VALUE";
        case ZEL_MISSING_INPUT:
            return "ZEL_MISSING_INPUT";
        case ZEL_BAD_ASSET:
            return "ZEL_BAD_ASSET";
        case ZEL_NOT_AVAILABLE:
            return "ZEL_NOT_AVAILABLE";
        case ZEL_BAD_FILE:
            return "ZEL_BAD_FILE";
        case ZEL_NO_MEMORY:
            return "ZEL_NO_MEMORY";
        case ZEL_CANCELLED:
            return "ZEL_CANCELLED";
        case ZEL_FAILED:
            return "ZEL_FAILED";
    }
    return "unknown";
}
