#include "cli/files/vips/vipsImage.h"

#include <algorithm>
#include <mutex>

namespace zelcli {

namespace {

/// Readers that are kept from untrusted files by default, and that a photographer needs.
constexpr const char* kWanted[] = {"VipsForeignLoadJp2k"};

void start() {
    // A library's own warnings would stand between our lines.
    g_log_set_handler(
        "VIPS", G_LOG_LEVEL_MASK, [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
    if (VIPS_INIT("zel") != 0) throw Failure("the picture library could not be started");
    vips_block_untrusted_set(TRUE);
    for (const char* name : kWanted) vips_operation_block_set(name, FALSE);
    // Every picture is seen once: remembered operations would only hold memory and files.
    vips_cache_set_max(0);
}

}  // namespace

void startVips() {
    static std::once_flag once;
    std::call_once(once, start);
}

void requireVips(int status) {
    if (status == 0) return;
    std::string text = vips_error_buffer();
    vips_error_clear();
    text = text.substr(0, text.find('\n'));
    const auto colon = text.find(": ");
    if (colon != std::string::npos && text.find(' ') > colon) text.erase(0, colon + 2);
    throw VipsFailure(text);
}

}  // namespace zelcli
