#include "cli/studio/browser.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <thread>

#include "cli/studio/guard.h"

namespace zelcli::studio {

namespace {

namespace fs = std::filesystem;

/// A folder of the user's own where there is one.
fs::path privateFolder() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    if (runtime && *runtime && fs::is_directory(runtime, error)) return runtime;
    return fs::temp_directory_path(error);
}

bool writePrivate(const fs::path& path, const std::string& text) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0) return false;
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    return close(file) == 0 && written;
}

}  // namespace

Browser::Browser(const std::string& address)
    : m_file(privateFolder() / ("zel-studio-" + makeSecret() + ".html")) {
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) return;
    if (!writePrivate(m_file,
                      "<!doctype html><meta charset=\"utf-8\"><title>zel studio</title>"
                      "<meta http-equiv=\"refresh\" content=\"0;url=" +
                          address + "\"><a href=\"" + address + "\">zel studio</a>\n"))
        return;
    std::string program = "xdg-open", file = m_file.string();
    char* const words[] = {program.data(), file.data(), nullptr};
    pid_t child = 0;
    m_started = posix_spawnp(&child, program.c_str(), nullptr, nullptr, words, environ) == 0;
    if (m_started) std::thread([child] { waitpid(child, nullptr, 0); }).detach();
}

Browser::~Browser() {
    std::error_code error;
    fs::remove(m_file, error);
}

}  // namespace zelcli::studio
