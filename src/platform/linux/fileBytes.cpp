#include "platform/fileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>

namespace zellab::platform {

namespace {

/// The library takes a file's length as an int.
constexpr off_t kLargestFile = std::numeric_limits<int>::max();

class FileDescriptor {
public:
    explicit FileDescriptor(const char* path)
        : m_fd(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}  // a named pipe must not block
    ~FileDescriptor() {
        if (m_fd >= 0) close(m_fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

}  // namespace

FileBytes readFileBytes(const char* path) {
    const FileDescriptor file(path);
    struct stat status {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0) return {std::nullopt, std::strerror(errno)};
    if (S_ISDIR(status.st_mode)) return {std::nullopt, "is a folder"};
    if (!S_ISREG(status.st_mode)) return {std::nullopt, "is not a regular file"};
    if (status.st_size > kLargestFile) return {std::nullopt, "is larger than two gigabytes"};
    std::vector<unsigned char> bytes(static_cast<std::size_t>(status.st_size));
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return {std::nullopt, std::strerror(errno)};
        if (count == 0) break;  // the file shrank meanwhile
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return {std::move(bytes), {}};
}

}  // namespace zellab::platform
