#include "platform/fileProbe.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

namespace zellab::platform {

bool pathExists(const char* path) {
    return access(path, F_OK) == 0;
}

File openRegularFile(const char* path) {
    // Not blocking: opening a pipe that nobody writes to returns at once and is turned away below.
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    std::FILE* file = nullptr;
    errno = 0;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) file = fdopen(descriptor, "rb");
    const bool hasNoMemory = !file && errno == ENOMEM;
    if (!file) close(descriptor);
    if (hasNoMemory) throw std::bad_alloc();
    return File(file);
}

std::optional<std::size_t> fileLength(const File& file) {
    struct stat status {};
    if (!file || fstat(fileno(file.get()), &status) != 0 || status.st_size < 0) return std::nullopt;
    return static_cast<std::size_t>(status.st_size);
}

bool isDirectory(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace zellab::platform
