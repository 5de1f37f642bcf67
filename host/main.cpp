#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "commands/commandLine.h"

namespace {

/// A parent may start us with a standard stream closed; the next file to be opened would take its place and
/// receive what is meant for the user.
void openMissingStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) _exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    openMissingStreams();
    return zel::runCommand(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
