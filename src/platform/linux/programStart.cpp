#include "platform/programStart.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace zellab::platform {

namespace {

/// A parent may start us with a standard stream closed; the next file to be opened would take its place and
/// receive what is meant for the user.
void openMissingStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) _exit(1);
}

/// Where OpenGL cannot be had, the system's driver says so on standard error before this program does, in
/// words that help nobody. A user who set the levels keeps them.
void quietenDrivers() {
    setenv("EGL_LOG_LEVEL", "fatal", 0);
    setenv("LIBGL_DEBUG", "quiet", 0);
}

}  // namespace

void prepareProgram() {
    openMissingStreams();
    quietenDrivers();
}

std::vector<std::string> programArguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace zellab::platform
